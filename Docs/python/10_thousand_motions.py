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
ERROR = 0.05  # degrees or units that a thinned curve may be off at its own keys
COLUMNS = ["capture", "state", "frames", "curves", "seconds", "keys", "kept", "error", "loop_gap", "findings"]


def filtered(values: np.ndarray) -> np.ndarray:
    """Each column smoothed by a binomial of five frames, its ends kept."""
    padded = np.pad(values, ((2, 2), (0, 0)), mode="edge")
    return sum(weight * padded[i : len(values) + i] for i, weight in enumerate((1, 4, 6, 4, 1))) / 16


def kept_keys(frames: np.ndarray, values: np.ndarray, error: float) -> np.ndarray:
    """Keys that a polyline needs to stay within the error everywhere: Douglas and Peucker's way."""
    keep = np.zeros(len(frames), bool)
    keep[[0, -1]] = True
    spans = [(0, len(frames) - 1)]
    while spans:
        first, last = spans.pop()
        if last - first < 2:
            continue
        line = np.interp(frames[first : last + 1], frames[[first, last]], values[[first, last]])
        off = np.abs(values[first : last + 1] - line)
        worst = int(off.argmax())
        if off[worst] > error:
            keep[first + worst] = True
            spans += [(first, first + worst), (first + worst, last)]
    return keep


def looped(values: np.ndarray) -> np.ndarray:
    """The motion bent so that it ends as it begins: the gap is spread evenly over all frames."""
    return values + np.linspace(0, 1, len(values), dtype=values.dtype)[:, None] * (values[0] - values[-1])


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
        source = np.arange(clip.begin, clip.end + 1, dtype=np.float32)
        smooth = looped(filtered(clip.sample(source).values))
        keys = kept = 0
        for column, curve in enumerate(clip.sample([]).curves):
            keep = kept_keys(source, smooth[:, column], ERROR)
            keys, kept = keys + len(source), kept + int(keep.sum())
            thinned = np.zeros(int(keep.sum()), [("frame", "f4"), ("value", "f4"), ("tangent", "u4")])
            thinned["frame"], thinned["value"] = source[keep], smooth[keep, column]
            thinned["tangent"] = kaanimation.Tangent.BROKEN  # straight from key to key
            curve.set_keys(thinned)
        error = float(np.abs(clip.sample(source).values - smooth).max(initial=0))
        ends = clip.sample([clip.begin, clip.end]).values
        samples = clip.sample(np.arange(clip.begin, clip.end, 25 / rate, dtype=np.float32))
        findings = "; ".join(project.notes + project.faults)
    name = pathlib.Path(capture).stem + ".zarr"
    with tempfile.TemporaryDirectory(dir=results, prefix=".making-") as folder:
        array = zarr.open_array(f"{folder}/{name}", mode="w", shape=samples.shape, dtype="f4", chunks=(1024, None))
        array[:] = samples.values
        array.attrs.update(names=list(samples.names), units=list(samples.units), rate=rate)
        shutil.rmtree(pathlib.Path(results, name), ignore_errors=True)
        os.replace(f"{folder}/{name}", pathlib.Path(results, name))  # there as a whole or not at all
    return row | {"frames": samples.shape[0], "curves": samples.shape[1],
                  "seconds": round(len(samples) / rate, 3), "keys": keys, "kept": kept, "error": f"{error:.4g}",
                  "loop_gap": f"{float(np.abs(ends[0] - ends[1]).max(initial=0)):.4g}",
                  "findings": findings}


def fingerprint(capture: pathlib.Path, rate: float) -> str:
    """Changes when the capture is written and with what is done to it; its bytes need not be read to know."""
    status = capture.stat()
    return f"{VERSION} {rate} {ERROR} {status.st_size} {status.st_mtime_ns}"


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
                if future.status == "finished":
                    row = future.result()
                else:
                    row = dict.fromkeys(COLUMNS, "") | {"capture": capture.name, "state": "failed",
                                                        "findings": repr(future.exception())}
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
