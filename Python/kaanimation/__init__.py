"""Keyframe animation from Python: open, look, edit, play and save.

>>> import kaanimation
>>> with kaanimation.open(kaanimation.example()) as project:
...     for clip in project.clips:
...         print(clip.name, clip.begin, clip.end, len(clip.curves))
swing 0.0 10.0 6

A project is what a file holds: a scene of nodes (`project.scene`) and the animation that moves them: clips of tracks
of blocks of curves of keys. Frames are the unit of time, degrees that of angles.

>>> project = kaanimation.open(kaanimation.example())
>>> curve = project.scene.find("Arm").field("rotationZ").curves[0]
>>> [(key.frame, key.value) for key in curve.keys[4:6]]
[(4.0, 85.5951...), (5.0, 90.0)]
>>> project.clips[0].sample(range(11)).shape
(11, 6)
>>> project.world_positions([0, 5]).shape
(2, 3, 3)

What Python holds of an object is its id. An object that is gone, whoever destroyed it, raises when it is touched; so
does everything of a project that was closed.

>>> curve.destroy()
>>> curve.name
Traceback (most recent call last):
kaanimation.GoneError: object ... has been destroyed
>>> project.close()

There is one registry of objects in a process, so one project is open at a time, and it belongs to the thread that
opened it. Many motions at once are many processes.
"""

import atexit as _atexit
from pathlib import Path as _Path
from typing import Callable as _Callable

from ._core import (
    KEY_DTYPE,
    Block,
    Clip,
    Comparison,
    Curve,
    CurveError,
    Difference,
    Field,
    Finding,
    Host,
    ImportReport,
    Joint,
    Key,
    Listener,
    Measure,
    Node,
    Object,
    Player,
    Project,
    Report,
    Scene,
    Sequence,
    Skeleton,
    Summary,
    Track,
    compare,
    current,
    listen,
    mirrored_name,
    name_table,
    open,
    renamed,
    send,
    validate,
)
from ._core import _close_at_exit
from ._enums import Action, Length, Tangent, Trigger
from ._errors import (
    ClosedError,
    Error,
    FaultWarning,
    FileError,
    GoneError,
    NoteWarning,
    OpenError,
    OutputError,
    RefusedError,
    ThreadError,
    UsageError,
)
from ._samples import Samples

def _plain(method: _Callable[[object], str]) -> _Callable[[object], str]:
    """The same as a function of Python's."""
    return lambda self: method(self)


for _class in (
    Action, Block, Clip, ClosedError, Comparison, Curve, CurveError, Difference, Error, FaultWarning, Field, FileError,
    Finding, GoneError, Host, ImportReport, Joint, Key, Length, Listener, Measure, Node, NoteWarning, Object, OpenError,
    OutputError, Player, Project, RefusedError, Report, Samples, Scene, Sequence, Skeleton, Summary, Tangent, ThreadError,
    Track, Trigger, UsageError,
):
    _class.__module__ = __name__  # what users see in tracebacks and help()
    if type(vars(_class).get("__repr__")).__name__ == "instancemethod":  # which pprint cannot look up
        setattr(_class, "__repr__", _plain(vars(_class)["__repr__"].__func__))


def example() -> _Path:
    """The path of a small capture, an arm of two nodes that swings, to try things on."""
    return _Path(__file__).with_name("swing.bvh")


_atexit.register(_close_at_exit)

__all__ = [
    "Action", "Block", "Clip", "ClosedError", "Comparison", "Curve", "CurveError", "Difference", "Error",
    "FaultWarning", "Field", "FileError", "Finding", "GoneError", "Host", "ImportReport", "Joint", "KEY_DTYPE", "Key",
    "Length", "Listener", "Measure", "Node", "NoteWarning", "Object", "OpenError", "OutputError", "Player", "Project",
    "RefusedError", "Report", "Samples", "Scene", "Sequence", "Skeleton", "Summary", "Tangent", "ThreadError", "Track",
    "Trigger", "UsageError", "compare", "current", "example", "listen", "mirrored_name", "name_table", "open", "renamed",
    "send", "validate",
]
