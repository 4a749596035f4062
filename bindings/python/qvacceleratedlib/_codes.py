"""The names that arguments take, and their codes in the C interface."""
from __future__ import annotations

import math
from typing import Iterable, List, Mapping

from ._errors import Error, Status, shown

METHODS = {"nearest": 1, "linear": 2, "cubic": 4, "area": 8, "lanczos": 16}
FILTERS = {**METHODS, "mitchell": 32}
SAMPLING = {"nearest": 1, "linear": 2, "cubic": 4}
AXES = {"horizontal": 0, "vertical": 1, "both": 2}
OPERATIONS = {"over": 0, "in": 1, "out": 2, "atop": 3, "xor": 4, "plus": 5}
PREMULTIPLIED = 6  # added to those
POSITIONS = {"centres": 0, "corners": 1}
FIELD_ORDERS = {"top": 0, "bottom": 1}
MATRICES = {"bt601": 0, "bt709": 1, "bt2020": 2}
SITINGS = {"repeated": 0, "left": 1, "centre": 2}
RGB_LAYOUTS = {"grey": 1, "bgr": 2, "rgb": 3, "bgra": 4, "rgba": 5}
LAYOUTS = {**RGB_LAYOUTS, "yuyv": 6, "uyvy": 7, "i420": 8, "yv12": 9, "nv12": 10, "nv21": 11,
           "i422": 12, "i444": 13}


def code(names: Mapping[str, int], value: str, argument: str, status: Status) -> int:
    """The code of a name; an Error with `status` that lists the names for anything else."""
    try:
        return names[value]
    except (KeyError, TypeError):
        raise Error(status, argument,
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
