#!/usr/bin/env python3
"""Draws how long operations take against how many items there are.

usage: growth_picture.py GROWTH_JSON PICTURE
GROWTH_JSON is what `ka-bench` writes with KA_BENCH_GROWTH set and --benchmark_filter=^growth/. Of several runs the
fastest counts, in processor time.
"""

import collections
import json
import sys

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def lines_of(path):
    """Of each kind, "one" and "each", the lines by name: {items: nanoseconds an item}."""
    kinds = {"one": collections.defaultdict(dict), "each": collections.defaultdict(dict)}
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    for run in runs:
        if run.get("run_type") == "aggregate":
            continue
        _, kind, name, items = run["run_name"].split("/")[:4]
        items = int(items)
        time = run["cpu_time"] * NANOSECONDS[run["time_unit"]] / (items if kind == "each" else 1)
        line = kinds[kind][name]
        line[items] = min(time, line.get(items, time))
    return kinds


def draw(axes, lines, title):
    colours = pyplot.get_cmap("tab20").colors
    for place, (name, line) in enumerate(sorted(lines.items())):
        items = sorted(line)
        axes.plot(items, [line[n] for n in items], marker="osv^Dx"[place % 6], markersize=4, label=name,
                  color=colours[(2 * place + place // 10) % 20])
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.set_xlim(800, 1.25e6)
    axes.set_title(title, fontsize=11)
    axes.set_xlabel("items")
    axes.set_ylabel("nanoseconds")
    axes.grid(True, which="major", linewidth=0.4)
    axes.legend(fontsize=8, loc="upper center", bbox_to_anchor=(0.5, -0.1), ncol=2, frameon=False)


def main(source, target):
    kinds = lines_of(source)
    figure, (left, right) = pyplot.subplots(1, 2, figsize=(13, 7.5))
    draw(left, kinds["one"], "one operation among as many items")
    draw(right, kinds["each"], "as many operations, each")
    figure.tight_layout()
    figure.savefig(target, dpi=90)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
