"""The names that arguments take, and their codes in the C interface."""
from __future__ import annotations

import math
from typing import Dict, Iterable, List, Mapping

from ._errors import Error, Status, shown

class Names(Dict[str, int]):
    """Names with their codes, and the status for any other."""

    def __init__(self, status: Status, names: Mapping[str, int]) -> None:
        super().__init__(names)
        self.status = status


METHODS = Names(Status.INTERPOLATION_ERR,
                {"nearest": 1, "linear": 2, "cubic": 4, "area": 8, "lanczos": 16})
FILTERS = Names(Status.INTERPOLATION_ERR, {**METHODS, "mitchell": 32})
SAMPLING = Names(Status.INTERPOLATION_ERR, {"nearest": 1, "linear": 2, "cubic": 4})
AXES = Names(Status.AXIS_ERR, {"horizontal": 0, "vertical": 1, "both": 2})
OPERATIONS = Names(Status.ALPHA_TYPE_ERR,
                   {"over": 0, "in": 1, "out": 2, "atop": 3, "xor": 4, "plus": 5})
PREMULTIPLIED = 6  # added to those
POSITIONS = Names(Status.OUT_OF_RANGE_ERR, {"centres": 0, "corners": 1})
FIELD_ORDERS = Names(Status.OUT_OF_RANGE_ERR, {"top": 0, "bottom": 1})
MATRICES = Names(Status.BAD_ARG_ERR, {"bt601": 0, "bt709": 1, "bt2020": 2})
SITINGS = Names(Status.BAD_ARG_ERR, {"repeated": 0, "left": 1, "centre": 2})
RGB_LAYOUTS = Names(Status.DATA_TYPE_ERR, {"grey": 1, "bgr": 2, "rgb": 3, "bgra": 4, "rgba": 5})
LAYOUTS = Names(Status.DATA_TYPE_ERR, {
    **RGB_LAYOUTS, "yuyv": 6, "uyvy": 7, "i420": 8, "yv12": 9, "nv12": 10, "nv21": 11, "i422": 12,
    "i444": 13})


def code(names: Names, value: str, argument: str) -> int:
    """The code of a name; an Error that lists the names for anything else."""
    try:
        return names[value]
    except (KeyError, TypeError):
        raise Error(names.status, argument,
                    f"one of {', '.join(map(repr, names))} wanted, not {shown(value)}") from None


def finite(values: Iterable[float], argument: str, status: Status, count: int) -> List[float]:
    """So many numbers, none of them infinite or not a number."""
    try:
        numbers = [float(value) for value in values if not isinstance(value, str)]
    except (TypeError, ValueError, OverflowError):
        numbers = []
    if len(numbers) != count or not all(map(math.isfinite, numbers)):
        raise Error(status, argument, f"{count} finite numbers wanted, not {shown(values)}")
    return numbers


def number(value: float, argument: str, status: Status) -> float:
    """A number that is neither infinite nor not a number."""
    try:
        return finite((value,), argument, status, 1)[0]
    except Error:
        raise Error(status, argument, f"a finite number wanted, not {shown(value)}") from None
