"""Pictures of motion with matplotlib; importing this module is what needs it."""

from __future__ import annotations

from typing import Any

import matplotlib.pyplot as plt  # type: ignore[import]

from ._samples import Samples


def plot_samples(samples: Samples, axes: Any = None) -> Any:
    """Draws the columns over the frames, those of one unit in one panel.

    axes: where to draw, all units in one panel; a figure of its own for None.
    Returns the axes, or an array of them where there is a panel for each unit.
    """
    units = sorted(set(samples.units))
    if axes is not None:
        panels = [axes] * len(units)
        made = axes
    else:
        _, made = plt.subplots(max(len(units), 1), 1, sharex=True, squeeze=False)
        panels = list(made[:, 0])
    for unit, panel in zip(units, panels):
        for column, name in enumerate(samples.names):
            if samples.units[column] == unit:
                panel.plot(samples.frames, samples.values[:, column], label=name)
        panel.set_ylabel(unit)
        panel.legend(fontsize="small")
    if panels:
        panels[-1].set_xlabel("frame")
    return made
