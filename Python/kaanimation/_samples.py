"""What sampling gives."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Iterator

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from ._core import Curve


class Samples:
    """Values of curves at frames: an array (frames, curves) that knows its names and units.

    NumPy takes it as the array; a column is found by its curve's name.

    >>> import kaanimation, numpy as np
    >>> with kaanimation.open(kaanimation.example()) as project:
    ...     samples = project.clips[0].sample([0, 5, 10])
    >>> samples.shape, samples.values.dtype
    ((3, 6), dtype('float32'))
    >>> samples.names[0], samples.units[0]
    ('Arm.rotationX', 'degrees')
    >>> bool((samples["Arm.rotationX"] == np.asarray(samples)[:, 0]).all())
    True
    """

    def __init__(
        self,
        values: npt.NDArray[np.float32],
        frames: npt.NDArray[np.float32],
        names: tuple[str, ...],
        units: tuple[str, ...],
        curves: tuple[Curve, ...],
    ) -> None:
        self.values = values  #: (frames, curves), float32, each curve's column in one piece; nan for no value
        self.frames = frames  #: where the curves were sampled
        self.names = names  #: 'Hips.translationX' for each column
        self.units = units  #: 'degrees', 'units' or '' for each column
        self.curves = curves  #: the curves themselves

    @property
    def shape(self) -> tuple[int, ...]:
        """(frames, curves)."""
        return self.values.shape

    def __len__(self) -> int:
        return len(self.values)

    def __iter__(self) -> Iterator[npt.NDArray[np.float32]]:
        return iter(self.values)

    def __array__(self, dtype: Any = None) -> npt.NDArray[Any]:
        return self.values if dtype is None else self.values.astype(dtype)

    def __getitem__(self, index: Any) -> Any:
        """The column of a name, the first of those that share it; for anything else what the array gives."""
        if isinstance(index, str):
            try:
                return self.values[:, self.names.index(index)]
            except ValueError:
                raise KeyError(index) from None
        return self.values[index]

    def __repr__(self) -> str:
        frames, curves = self.values.shape
        return f"<samples of {curves} curves at {frames} frames>"

    def plot(self, axes: Any = None) -> Any:
        """Draws the columns with matplotlib, which must be there, and returns the axes."""
        from .plot import plot_samples

        return plot_samples(self, axes)
