"""What the arrays of the Python package cost, beside plain NumPy doing the same sums.

usage: PYTHONPATH=build/release/python /usr/bin/python3 Benchmarks/python_timings.py [CAPTURE]

Of seven runs the fastest. NumPy samples by solving each segment's cubic with Newton's method in whole columns, turns
poses into positions by products of whole columns of matrices, and places smooth handles from differences.
"""

import sys
import time

import kaanimation
import numpy as np


def fastest(work) -> float:
    """Seconds of the processor, in which what else runs on the machine counts little."""
    times = []
    for _ in range(7):
        began = time.process_time()
        work()
        times.append(time.process_time() - began)
    return min(times)


def numpy_samples(tables: list, frames: np.ndarray) -> np.ndarray:
    """Cubic Bézier segments in the (frame, value) plane, a column for each table of keys."""
    columns = []
    for keys in tables:
        place = np.clip(np.searchsorted(keys["frame"], frames, "right") - 1, 0, len(keys) - 2)
        x, y = ([keys[name].astype(float)[place + at] for name, at in
                 ((kind, 0), (f"out_{kind}", 0), (f"in_{kind}", 1), (kind, 1))] for kind in ("frame", "value"))
        t = (frames - x[0]) / (x[3] - x[0])
        a, b, c = x[3] - 3 * x[2] + 3 * x[1] - x[0], 3 * x[2] - 6 * x[1] + 3 * x[0], 3 * (x[1] - x[0])
        for _ in range(6):
            t = t - (((a * t + b) * t + c) * t + x[0] - frames) / ((3 * a * t + 2 * b) * t + c + 1e-12)
        u = 1 - t
        columns.append(u * u * u * y[0] + 3 * u * u * t * y[1] + 3 * u * t * t * y[2] + t * t * t * y[3])
    return np.stack(columns, axis=1)


def numpy_positions(parents: list, offsets: np.ndarray, turns: np.ndarray) -> np.ndarray:
    """offsets (frames, nodes, 3), turns in radians (frames, nodes, 3), applied about x, y, z."""
    worlds = []
    for node, parent in enumerate(parents):
        (cx, cy, cz), (sx, sy, sz) = np.cos(turns[:, node]).T, np.sin(turns[:, node]).T
        local = np.zeros((len(turns), 4, 4))
        local[:, 0, :3] = np.stack([cz * cy, cz * sy * sx - sz * cx, cz * sy * cx + sz * sx], 1)
        local[:, 1, :3] = np.stack([sz * cy, sz * sy * sx + cz * cx, sz * sy * cx - cz * sx], 1)
        local[:, 2, :3] = np.stack([-sy, cy * sx, cy * cx], 1)
        local[:, :3, 3] = offsets[:, node]
        local[:, 3, 3] = 1
        worlds.append(local if parent is None else worlds[parent] @ local)
    return np.stack([world[:, :3, 3] for world in worlds], axis=1)


def numpy_handles(frames: np.ndarray, values: np.ndarray) -> np.ndarray:
    """Smooth keys: along the chord of the neighbours, half the distance on each side, at most a third of both."""
    keys = np.zeros(len(frames), kaanimation.KEY_DTYPE)
    keys["frame"], keys["value"] = frames, values
    before, after = np.r_[frames[0], frames[:-1]], np.r_[frames[1:], frames[-1]]
    slope = (np.r_[values[1:], values[-1]] - np.r_[values[0], values[:-1]]) / (after - before)
    third = (after - before) / 3
    for name, length in (("in", -np.minimum((frames - before) / 2, third)),
                         ("out", np.minimum((after - frames) / 2, third))):
        keys[f"{name}_frame"], keys[f"{name}_value"] = frames + length, values + slope * length
    return keys


def main() -> None:
    capture = sys.argv[1] if len(sys.argv) > 1 else "/usr/share/assimp/models/BVH/01_01.bvh"
    with kaanimation.open(capture) as project:
        clip = project.clips[0]
        samples = clip.sample([])
        tables = [curve.get_keys() for curve in samples.curves]
        frames = np.linspace(clip.begin, clip.end, 10_000, dtype=np.float32)
        ours, plain = fastest(lambda: clip.sample(frames)), fastest(lambda: numpy_samples(tables, frames))
        count = frames.size * len(tables)
        off = np.nanmax(np.abs(clip.sample(frames).values - numpy_samples(tables, frames)))
        print(f"sample: {len(tables)} curves at {frames.size} frames, {ours / count * 1e9:.1f} ns a value; NumPy "
              f"{plain / count * 1e9:.1f} ns, {plain / ours:.1f} times as long; apart by {off:.2g} at most")

        nodes = project.scene.placed_nodes
        frames = np.arange(500, dtype=np.float32)
        place = {node: index for index, node in enumerate(nodes)}
        parents = [place.get(node.parent) for node in nodes]
        values = clip.sample(frames)
        offsets, turns = np.zeros((2, len(frames), len(nodes), 3))
        for node, index in place.items():
            for kind, into in (("translation", offsets), ("rotation", turns)):
                into[:, index] = getattr(node, kind)
                for axis, letter in enumerate("XYZ"):
                    if f"{node.name}.{kind}{letter}" in values.names:
                        into[:, index, axis] = values[f"{node.name}.{kind}{letter}"]
        turns = np.radians(turns)
        ours = fastest(lambda: project.world_positions(frames))
        plain = fastest(lambda: numpy_positions(parents, offsets, turns))
        sampled = fastest(lambda: numpy_samples(tables, frames))
        off = np.abs(project.world_positions(frames) - numpy_positions(parents, offsets, turns)).max()
        count = len(frames) * len(nodes)
        print(f"world_positions: {len(nodes)} nodes at {len(frames)} frames, {ours / count * 1e9:.0f} ns a position; NumPy "
              f"{(sampled + plain) / count * 1e9:.0f} ns, of these {plain / count * 1e9:.0f} ns from angles that are "
              f"there already; apart by {off:.2g} at most")

        count = 100_000
        curve = project.create_curve(nodes[0], "scaleX")
        pairs = np.stack([np.arange(count), np.sin(np.arange(count))], 1).astype(np.float32)
        ours = fastest(lambda: curve.set_keys(pairs))
        plain = fastest(lambda: numpy_handles(pairs[:, 0], pairs[:, 1]))
        out = fastest(curve.get_keys)
        print(f"set_keys: {count} keys in {ours * 1e3:.0f} ms, the former ones destroyed; NumPy's handles alone "
              f"{plain * 1e3:.1f} ms; get_keys {out * 1e3:.1f} ms")


if __name__ == "__main__":
    main()
