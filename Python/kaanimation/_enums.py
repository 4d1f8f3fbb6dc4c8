"""Numbers with names."""

from enum import IntEnum


class Tangent(IntEnum):
    """How the handles of a key are placed."""

    COLLAPSED = 0  #: both on the key: the value holds until the next key
    BROKEN = 1  #: each towards its own neighbour
    FLAT = 2  #: horizontal
    SMOOTH = 4  #: along the chord from the previous to the next key
    FORWARD = 8  #: along the line to the next key
    USER = 16  #: where they were put


class Length(IntEnum):
    """How long the handles of a key are."""

    THIRD = 4  #: a third of the distance between the neighbours
    FIXED = 32  #: 2 units along the handle's direction
    HALF = 64  #: half the distance to the neighbour on that side


class Trigger(IntEnum):
    """What of an object fires a connection."""

    BEGIN = 0  #: playing reaches its begin
    END = 1  #: playing passes its end


class Action(IntEnum):
    """What a connection does to its target."""

    PLAY = 0  #: the target is started
    STOP = 1  #: the target is stopped
