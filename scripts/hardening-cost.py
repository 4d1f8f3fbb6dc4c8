#!/usr/bin/env python3
"""What the hardening of the packages costs: the benchmarks on the libraries as `make bench` builds them and as the
packages hold them, in turn, the fastest of all rounds of each. Exits with 1 when they are more than 3 % slower on the whole.

    scripts/hardening-cost.py build/release/bin/ka-bench build/packages/kaanimation-1.0.0/build/package/lib [ROUNDS]

The two differ in the compiler's options alone when both were built from the same sources.
"""

import json
import math
import os
import pathlib
import subprocess
import sys
import tempfile

LIMIT = 1.03
# Every kind of work once. What the host's memory decides is left out: it differs more from run to run than by options.
ROWS = [
    "sampleOneInOrder/mixed/256",
    "sampleOneRandom/mixed/1024",
    "sampleManyInOrder/mixed/256",
    "evaluateChanging",
    "evaluateHeld",
    "loopTenPlaying/100",
    "buildShuffled/10000",
    "dragOneOf100000",
    "addAndRemoveCurve",
    "findAmongAMillion",
    "loadDocument",
    "saveDocument",
]


def measure(bench, libraries):
    """Nanoseconds by row, of processor time where the row has no other."""
    environment = {**os.environ, **({"LD_LIBRARY_PATH": str(libraries)} if libraries else {})}
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [bench, f"--benchmark_filter=^({'|'.join(ROWS)})(/.*)?$", "--benchmark_min_time=0.05",
                   f"--benchmark_out={out.name}", "--benchmark_out_format=json"]  # fmt: skip
        # The table of musts lacks most of its rows here, so the exit status says nothing.
        subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, check=False)
        report = json.load(out)
    times = {}
    for entry in report["benchmarks"]:
        if entry.get("run_type") != "aggregate":
            key = "real_time" if "manual_time" in entry["name"] else "cpu_time"
            times[entry["name"]] = min(entry[key], times.get(entry["name"], math.inf))
    return times


def main():
    if len(sys.argv) not in (3, 4) or not pathlib.Path(sys.argv[2], "libkaAnimation.so.1").exists():
        sys.exit(__doc__)
    bench, packaged = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    plain, hardened = {}, {}
    for _ in range(int(sys.argv[3]) if len(sys.argv) == 4 else 5):
        for libraries, best in ((None, plain), (packaged, hardened)):
            for name, time in measure(bench, libraries).items():
                best[name] = min(time, best.get(name, math.inf))
    if not plain or plain.keys() != hardened.keys():
        sys.exit("hardening-cost: no benchmark was run")
    ratios = {name: hardened[name] / plain[name] for name in plain}
    print("| benchmark | hardened against plain |\n|---|---|")
    for name, ratio in ratios.items():
        print(f"| {name.split('/iterations')[0]} | {ratio:.3f} |")
    whole = math.exp(sum(math.log(ratio) for ratio in ratios.values()) / len(ratios))
    print(f"| all, geometric mean | {whole:.3f} |")
    sys.exit(0 if whole <= LIMIT else 1)


if __name__ == "__main__":
    main()
