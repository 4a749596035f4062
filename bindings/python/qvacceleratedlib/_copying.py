"""Copies, fills, mirror images, palettes, scaled bytes."""
from __future__ import annotations

from typing import Optional, Sequence, Union, cast

import numpy as np

from ._arrays import (ANY, BYTES, TYPES, UINT8, Image, Pixels, address_of, byte_of, in_place,
                      pixels, same_size, target)
from ._codes import AXES, code
from ._errors import Error, Status, failed, shown
from ._library import Size, lib

_PLANE_TO_THREE, _FOUR_TO_THREE, _THREE_TO_FOUR, _SCALE = 9, 13, 14, 16


def copy(image: Image, out: Optional[Image] = None) -> Image:
    """A copy of an image, (H, W) or (H, W, 2 to 4): of a crop, the rows closed up.

    Errors: an array that is none of those; `out` of another shape, or overlapping `image`.

    >>> frame = np.arange(12, dtype=np.uint8).reshape(3, 4)
    >>> copy(frame[1:, 1:3])
    array([[ 5,  6],
           [ 9, 10]], dtype=uint8)
    """
    address, step, width, height, channels = pixels(image, "image", ANY)
    out, to, to_step = target(out, image.shape, image)
    status = lib.qv_copy(BYTES, address, step, to, to_step, Size(width * channels, height))
    if status:
        raise failed(status)
    return out


def merge(planes: Sequence[Image], out: Optional[Image] = None) -> Image:
    """Three planes (H, W) as the three channels of one image (H, W, 3), in their order.

    Errors: not three planes; planes of different sizes; `out` overlapping one.

    >>> merge([np.full((1, 2), value, np.uint8) for value in (1, 2, 3)])
    array([[[1, 2, 3],
            [1, 2, 3]]], dtype=uint8)
    """
    try:
        planes = tuple(planes)
    except TypeError:
        planes = ()
    if len(planes) != 3:
        raise Error(Status.CHANNEL_ERR, "planes", f"three arrays wanted, not {len(planes)}")
    described = [pixels(plane, f"planes[{i}]", (1,)) for i, plane in enumerate(planes)]
    _, _, width, height, _ = described[0]
    for i, plane in enumerate(planes):
        same_size(plane, f"planes[{i}]", width, height)
    out, to, to_step = target(out, (height, width, 3), *planes)
    for i, (address, step, _, _, _) in enumerate(described):
        status = lib.qv_copy(_PLANE_TO_THREE, address, step, to + i, to_step, Size(width, height))
        if status:
            raise failed(status)
    return out


def drop_alpha(image: Image, out: Optional[Image] = None) -> Image:
    """The first three channels of an image (H, W, 4): BGR from BGRA, RGB from RGBA.

    Errors: another shape; `out` overlapping `image`.

    >>> drop_alpha(np.array([[[1, 2, 3, 255]]], np.uint8))
    array([[[1, 2, 3]]], dtype=uint8)
    """
    address, step, width, height, _ = pixels(image, "image", (4,))
    out, to, to_step = target(out, (height, width, 3), image)
    status = lib.qv_copy(_FOUR_TO_THREE, address, step, to, to_step, Size(width, height))
    if status:
        raise failed(status)
    return out


def add_alpha(image: Image, alpha: Optional[int] = 255, out: Optional[Image] = None) -> Image:
    """An image (H, W, 3) with a fourth channel that is `alpha` (0 to 255) everywhere, or, for
    None, what stands in `out`.

    Errors: another shape; no `out` for None, or one that overlaps `image`.

    >>> add_alpha(np.array([[[1, 2, 3]]], np.uint8), 128)
    array([[[  1,   2,   3, 128]]], dtype=uint8)
    """
    address, step, width, height, _ = pixels(image, "image", (3,))
    value = None if alpha is None else byte_of(alpha, "alpha")
    if value is None and out is None:
        raise Error(Status.NULL_PTR_ERR, "out", "needed where alpha is None, which keeps its alpha")
    out, to, to_step = target(out, (height, width, 4), image)
    if value is not None:
        fill(out, value)
    status = lib.qv_copy(_THREE_TO_FOUR, address, step, to, to_step, Size(width, height))
    if status:
        raise failed(status)
    return out


def grey_to_bgr(image: Image, out: Optional[Image] = None) -> Image:
    """A plane (H, W) as three equal channels (H, W, 3).

    Errors: another shape; `out` overlapping `image`.

    >>> grey_to_bgr(np.array([[7]], np.uint8))
    array([[[7, 7, 7]]], dtype=uint8)
    """
    address, step, width, height, _ = pixels(image, "image", (1,))
    out, to, to_step = target(out, (height, width, 3), image)
    status = lib.qv_dup(0, address, step, to, to_step, Size(width, height))
    if status:
        raise failed(status)
    return out


def fill(out: Image, value: Union[int, Sequence[int]]) -> Image:
    """Sets all pixels of `out`, (H, W) or (H, W, 2 to 4), to `value` and returns it: one byte of 0
    to 255 for all channels, or, for three, a byte each.

    Errors: a value that is neither; an array that cannot be written.

    >>> fill(np.empty((1, 2, 3), np.uint8), (255, 0, 9))
    array([[[255,   0,   9],
            [255,   0,   9]]], dtype=uint8)
    """
    described = pixels(out, "out", ANY, True)
    paint(described, colour_of(value, described[4], "value"))
    return out


def colour_of(value: Union[int, Sequence[int]], channels: int, argument: str) -> bytes:
    """The byte for all channels of a pixel, or those for three."""
    if not isinstance(value, (tuple, list, np.ndarray)):
        return bytes((byte_of(cast(int, value), argument),))
    if len(value) != 3 or channels != 3:
        raise Error(Status.CHANNEL_ERR, argument,
                    f"one byte wanted, or three for three channels, not {shown(value)}")
    return bytes(byte_of(part, argument) for part in value)


def paint(described: Pixels, colour: bytes) -> None:
    """Sets all pixels to what colour_of() has made."""
    to, to_step, width, height, channels = described
    kind = TYPES[3]
    if len(colour) == 1:
        kind, width = BYTES, width * channels
    status = lib.qv_set(kind, colour, to, to_step, Size(width, height))
    if status:
        raise failed(status)


def mirror(image: Image, axis: str = "both", out: Optional[Image] = None) -> Image:
    """The mirror image of (H, W) or (H, W, 3). With (x, y) a source pixel, `axis`
        "horizontal"  takes it to (x, H - 1 - y), about the horizontal axis: top to bottom
        "vertical"    takes it to (W - 1 - x, y), about the vertical axis: left to right
        "both"        does both: a turn by 180 degrees

    Errors: another shape or axis; `out` of another shape, or overlapping `image`.

    >>> mirror(np.array([[1, 2, 3], [4, 5, 6]], np.uint8), "vertical")
    array([[3, 2, 1],
           [6, 5, 4]], dtype=uint8)
    """
    address, step, width, height, channels = pixels(image, "image", TYPES)
    about = code(AXES, axis, "axis")
    out, to, to_step = target(out, image.shape, image)
    status = lib.qv_mirror(TYPES[channels], address, step, to, to_step, Size(width, height), about)
    if status:
        raise failed(status)
    return out


def palette(image: Image, entries: Image, out: Optional[Image] = None) -> Image:
    """The colours (H, W, 3) of an index image (H, W), looked up in `entries`, a contiguous array
    (2^n, 3), n of 1 to 8; of each index the low n bits count:
        out[y, x] = entries[image[y, x] & (2^n - 1)]

    Errors: other shapes; `out` overlapping `image` or `entries`.

    >>> black_red = np.array([[0, 0, 0], [0, 0, 255]], np.uint8)
    >>> palette(np.array([[0, 1]], np.uint8), black_red)
    array([[[  0,   0,   0],
            [  0,   0, 255]]], dtype=uint8)
    """
    address, step, width, height, _ = pixels(image, "image", (1,))
    bits = len(entries).bit_length() - 1 if isinstance(entries, np.ndarray) else 0
    if (not 1 <= bits <= 8 or entries.shape != (1 << bits, 3) or entries.dtype != UINT8
            or not entries.flags.c_contiguous):
        raise Error(Status.OUT_OF_RANGE_ERR, "entries",
                    "a contiguous uint8 array of shape (2, 3), (4, 3), ... or (256, 3) wanted")
    out, to, to_step = target(out, (height, width, 3), image, entries)
    status = lib.qv_lut_palette(0, address, step, to, to_step, Size(width, height),
                                address_of(entries), bits)
    if status:
        raise failed(status)
    return out


def scale(image: Image, value: int, out: Optional[Image] = None) -> Image:
    """Every byte of (H, W) or (H, W, 2 to 4) times value / 255, value of 0 to 255, truncated:
        floor(x * value / 255)
    In place with out=image.

    Errors: another value; rows to be written that do not lie below each other in memory.

    >>> scale(np.array([[0, 100, 255]], np.uint8), 128)
    array([[  0,  50, 128]], dtype=uint8)
    """
    value = byte_of(value, "value")
    if out is not None and pixels(out, "out", ANY, True)[1] < 1:
        raise Error(Status.STEP_ERR, "out", "rows from bottom to top, which scale does not take")
    described = pixels(image, "image", ANY, out is image)
    out, (to, to_step, width, height, channels) = in_place(image, described, out)
    status = lib.qv_mul_c_scale(_SCALE, value, to, to_step, Size(width * channels, height))
    if status:
        raise failed(status)
    return out
