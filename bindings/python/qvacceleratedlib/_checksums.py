"""Checksums of bytes and images."""
from __future__ import annotations

import ctypes
from typing import Any, Callable, Iterator, Tuple, Union

import numpy as np

from ._arrays import ANY, MOST, Image, address_of, pixels, whole
from ._errors import Error, Status, failed
from ._library import lib


def _pieces(data: Any) -> Iterator[Tuple[int, int]]:
    """Address and length of every stretch of bytes in `data`, of at most 2^31 - 1."""
    if not isinstance(data, np.ndarray):
        try:
            data = np.frombuffer(data, np.uint8)
        except (TypeError, ValueError, BufferError) as error:
            raise Error(Status.DATA_TYPE_ERR, "data", f"no contiguous bytes: {error}") from None
    if data.flags.c_contiguous:
        address = address_of(data)
        for start in range(0, data.nbytes, MOST):
            yield address + start, min(MOST, data.nbytes - start)
    else:
        address, step, width, height, channels = pixels(data, "data", ANY)
        for y in range(height):
            yield address + y * step, width * channels


def _running(function: Callable[..., int], data: Any, value: int) -> int:
    register = ctypes.c_uint(whole(value, "value", 0, 2**32 - 1))
    for address, length in _pieces(data):
        status = function(0, address, length, ctypes.addressof(register))
        if status:
            raise failed(status)
    return register.value


def crc32(data: Union[bytes, bytearray, memoryview, Image], value: int = 0) -> int:
    """CRC-32 of ITU-T V.42 and ISO 3309 (that of zlib, PNG and zip) of bytes, or of an image row by
    row, padding left out: crc32(image) == crc32(image.tobytes()). `value` is the checksum of what
    comes before.

    Errors: an object whose bytes do not lie side by side; a value that has not 32 bits.

    >>> hex(crc32(b"123456789"))
    '0xcbf43926'
    >>> hex(crc32(b"6789", crc32(b"12345")))
    '0xcbf43926'
    """
    return _running(lib.qv_crc32, data, value)


def adler32(data: Union[bytes, bytearray, memoryview, Image], value: int = 1) -> int:
    """Adler-32 of RFC 1950 of bytes, or of an image as crc32() takes it: b * 65536 + a, each byte d
    making a = (a + d) mod 65521 and b = (b + a) mod 65521. `value` is the checksum of what comes
    before.

    Errors: an object whose bytes do not lie side by side; a value that has not 32 bits.

    >>> hex(adler32(b"abc"))
    '0x24d0127'
    """
    return _running(lib.qv_adler32, data, value)
