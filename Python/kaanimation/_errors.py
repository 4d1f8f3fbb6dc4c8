"""What kaanimation raises and warns of."""

import re
from typing import Optional


class Error(Exception):
    """The base of everything that kaanimation raises on purpose."""


class FileError(Error):
    """A file is missing, damaged or of no known kind."""

    @property
    def file(self) -> Optional[str]:
        """The file as it was named; None where the text names none."""
        return self._place()[0]

    @property
    def line(self) -> Optional[int]:
        """The line to blame, counted from 1; None where no line is."""
        return self._place()[1]

    @property
    def column(self) -> Optional[int]:
        """The column, counted from 1; None where the line says enough."""
        return self._place()[2]

    def _place(self) -> tuple[Optional[str], Optional[int], Optional[int]]:
        found = re.match(r"(.+?):(?:(\d+):)?(?:(\d+):)? ", str(self), re.DOTALL)
        if found is None:
            return None, None, None
        file, line, column = found.groups()
        return file, int(line) if line else None, int(column) if column else None


class UsageError(Error, ValueError):
    """What was asked for does not exist or makes no sense: a name that stands for nothing, say."""


class OutputError(Error, OSError):
    """A result could not be written in full; what was there before stays."""


class OpenError(Error, RuntimeError):
    """Another project is open: the registry of objects is one in a process."""


class ClosedError(Error, RuntimeError):
    """The project has been closed."""


class GoneError(Error, ReferenceError):
    """What the object stood for has been destroyed."""


class ThreadError(Error, RuntimeError):
    """The open project belongs to the thread that opened it."""


class RefusedError(Error, ValueError):
    """An edit that the rules forbid; nothing was changed."""


class NoteWarning(UserWarning):
    """Something the user ought to see though nothing failed."""


class FaultWarning(NoteWarning):
    """A curve that will not play from the saved document as it does now."""
