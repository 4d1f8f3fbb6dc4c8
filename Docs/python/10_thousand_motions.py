"""A folder of captures into arrays, on as many processes as there are.

usage: CAPTURES RESULTS [--workers N] [--scheduler ADDRESS] [--rate FRAMES_PER_SECOND]

Every capture becomes a Zarr array of its curves at a fixed rate and a row of RESULTS/table.csv with its length, the
error of thinning its keys, and what was found wrong with it. A capture that cannot be read gets its row and stops
nobody else; one whose worker dies is tried again; a second run does only what changed.
"""

import argparse
import csv
import json
import os
import pathlib
import shutil
import sys
import tempfile
import time

import numpy as np

VERSION = 1  # of what `convert` does: another number has everything done again
ERROR = 0.05  # degrees or units that a thinned curve may be off
CUT_OFF = 6.0  # hertz, beyond which motion counts as jitter
COLUMNS = ["capture", "state", "frames", "curves", "seconds", "keys", "kept", "error", "loop_gap", "findings"]


def convert(capture: str, results: str, rate: float) -> dict:
    """One capture. Runs in a worker, which has one project at a time because it has one thread."""
    import kaanimation
    import zarr

    row = dict.fromkeys(COLUMNS, "") | {"capture": os.path.basename(capture), "state": "done"}
    try:
        project = kaanimation.open(capture)
    except kaanimation.FileError as error:
        return row | {"state": "unreadable", "findings": str(error)}
    with project:
        clip = project.clips[0]
        clip.remove_flips()
        clip.smooth(CUT_OFF)
        clip.loop()
        source = np.arange(clip.begin, clip.end + 1, dtype=np.float32)
        full = clip.sample(source).values
        thinned = clip.reduce(rotation=ERROR, translation=ERROR)
        error = float(np.abs(clip.sample(source).values - full).max(initial=0))
        ends = clip.sample([clip.begin, clip.end])
        gap = np.abs(ends.values[0] - ends.values[1])
        turns = np.array(ends.units) == "degrees"
        gap[turns] = np.abs((gap[turns] + 180) % 360 - 180)  # whole turns apart is no gap
        samples = clip.sample(np.arange(clip.begin, clip.end, 25 / rate, dtype=np.float32))
        findings = "; ".join(project.notes + project.faults + thinned.faults)
    name = pathlib.Path(capture).stem + ".zarr"
    with tempfile.TemporaryDirectory(dir=results, prefix=".making-") as folder:
        array = zarr.open_array(f"{folder}/{name}", mode="w", shape=samples.shape, dtype="f4", chunks=(1024, None))
        array[:] = samples.values
        array.attrs.update(names=list(samples.names), units=list(samples.units), rate=rate)
        shutil.rmtree(pathlib.Path(results, name), ignore_errors=True)
        os.replace(f"{folder}/{name}", pathlib.Path(results, name))  # there as a whole or not at all
    return row | {"frames": samples.shape[0], "curves": samples.shape[1],
                  "seconds": round(len(samples) / rate, 3), "keys": thinned.keys_before,
                  "kept": thinned.keys_after, "error": f"{error:.4g}",
                  "loop_gap": f"{float(gap.max(initial=0)):.4g}", "findings": findings}


def fingerprint(capture: pathlib.Path, rate: float) -> str:
    """Changes when the capture is written and with what is done to it; its bytes need not be read to know."""
    status = capture.stat()
    return f"{VERSION} {rate} {ERROR} {CUT_OFF} {status.st_size} {status.st_mtime_ns}"


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("captures", type=pathlib.Path)
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--workers", type=int, default=os.cpu_count())
    parser.add_argument("--scheduler", help="the address of a cluster that runs already; else one is made here")
    parser.add_argument("--rate", type=float, default=30.0)
    options = parser.parse_args()

    from distributed import Client, LocalCluster, as_completed

    options.results.mkdir(parents=True, exist_ok=True)
    state_file = options.results / "state.json"
    state = json.loads(state_file.read_text()) if state_file.exists() else {}
    wanted = {}
    for capture in sorted(options.captures.glob("*.bvh")):
        mark = fingerprint(capture, options.rate)
        if state.get(capture.name, {}).get("fingerprint") != mark:
            wanted[capture] = mark
    state = {name: entry for name, entry in state.items() if (options.captures / name).exists()}

    began = time.perf_counter()
    if wanted:
        cluster = options.scheduler or LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                                                    dashboard_address=None)
        with Client(cluster) as client:
            futures = {client.submit(convert, str(capture), str(options.results), options.rate, retries=2,
                                     pure=False): capture for capture in wanted}
            for future in as_completed(list(futures)):
                capture = futures[future]
                try:
                    # Waits anew where a worker that died took a finished result with it.
                    row = future.result()
                except Exception as error:
                    row = dict.fromkeys(COLUMNS, "") | {"capture": capture.name, "state": "failed",
                                                        "findings": repr(error)}
                # What failed is tried again by the next run; what is unreadable only once its bytes change.
                mark = wanted[capture] if row["state"] != "failed" else ""
                state[capture.name] = {"fingerprint": mark, "row": row}
        if not options.scheduler:
            cluster.close()
    partial = state_file.with_suffix(".new")
    partial.write_text(json.dumps(state, indent=1))
    partial.replace(state_file)
    with open(options.results / "table.csv", "w", newline="") as file:
        table = csv.DictWriter(file, COLUMNS)
        table.writeheader()
        table.writerows(state[name]["row"] for name in sorted(state))
    seconds = time.perf_counter() - began
    bad = [name for name in state if state[name]["row"]["state"] != "done"]
    print(f"{len(wanted)} of {len(state)} captures converted in {seconds:.1f} s, {len(bad)} not: {', '.join(bad)}")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
