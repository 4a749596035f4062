"""What an operation returns, as an exception."""
from __future__ import annotations

import enum
import reprlib
from typing import Any, Dict, Tuple

from ._library import lib


class Status(enum.IntEnum):
    """The statuses of the C interface (enum qv_status of qv.h)."""

    EMPTY_OUTPUT_ERR = -201
    QUAD_ERR = -58
    RECT_ERR = -57
    COEFF_ERR = -56
    CHANNEL_ERR = -53
    ALPHA_TYPE_ERR = -50
    RESIZE_FACTOR_ERR = -23
    INTERPOLATION_ERR = -22
    AXIS_ERR = -21
    STEP_ERR = -14
    OUT_OF_RANGE_ERR = -11
    MEM_ALLOC_ERR = -9
    NULL_PTR_ERR = -8
    SIZE_ERR = -6
    BAD_ARG_ERR = -5
    QUAD_SIGN_ERR = -4
    DATA_TYPE_ERR = -2
    OK = 0
    NOTHING_TO_DO_WARNING = 1
    CPU_UNKNOWN = 20
    NO_OVERLAP_WARNING = 29
    ODD_SIZE_WARNING = 35


class Error(ValueError):
    """An argument that an operation does not take. Nothing has been written then.

    status    the status of the C interface, a Status where it is one of those
    name      its name there, such as "QV_STATUS_SIZE_ERR"
    argument  the argument that is wrong; "" if no single one is

    >>> import numpy as np
    >>> import qvacceleratedlib as qv
    >>> try:
    ...     qv.mirror(np.zeros((4, 0), np.uint8))
    ... except qv.Error as error:
    ...     print(error)
    image: shape (4, 0) has no pixel (QV_STATUS_SIZE_ERR, -6)
    """

    def __init__(self, status: int, argument: str, reason: str) -> None:
        self.status = Status(status) if status in _KNOWN else status
        self.name: str = lib.qv_status_name(status).decode()
        self.argument = argument
        self.reason = reason
        where = f"{argument}: " if argument else ""
        super().__init__(f"{where}{reason} ({self.name}, {int(status)})")

    def __reduce__(self) -> Tuple[Any, ...]:
        return Error, (int(self.status), self.argument, self.reason)


_KNOWN = frozenset(Status)

# The argument that a status is about, where an operation does not say another one.
_ARGUMENTS: Dict[int, str] = {
    Status.QUAD_ERR: "quad", Status.RECT_ERR: "region", Status.COEFF_ERR: "matrix",
    Status.RESIZE_FACTOR_ERR: "size", Status.EMPTY_OUTPUT_ERR: "size",
    Status.INTERPOLATION_ERR: "method", Status.NO_OVERLAP_WARNING: "region",
}


def failed(status: int, argument: str = "", reason: str = "") -> Error:
    """The exception for a status other than 0 that a call has returned; `reason` is why it is
    about the argument, where the library's words for the status are too general."""
    if status == Status.MEM_ALLOC_ERR:
        argument = reason = ""
    return Error(status, argument or _ARGUMENTS.get(status, ""),
                 reason or lib.qv_status_text(status).decode())


def shown(value: object) -> str:
    """What has been given, in a line."""
    return " ".join(reprlib.repr(value).split())
