"""Interlaced frames: combing smoothed, fields made frames, frames made of fields."""
from __future__ import annotations

from typing import Optional, Tuple

from ._arrays import ANY, BYTES, Image, pair, pixels, target, whole
from ._codes import FIELD_ORDERS, code
from ._errors import Error, Status, failed
from ._library import Size, lib

_WHOLE_FRAME = 0


def deinterlace(image: Image, centre_weight: int = 128, out: Optional[Image] = None) -> Image:
    """Smooths the combing of an interlaced frame of at least 3 rows, (H, W) or (H, W, 2 to 4):
    every row but the first and the last, which are copied, becomes, with w = centre_weight, 0 to
    256, and s = (256 - w) / 2 truncated,
        floor(((row above + row below) s + row w) / 256)

    Errors: fewer rows; another weight; `out` of another shape, or overlapping `image`.

    >>> deinterlace(np.array([[0], [100], [0], [100]], np.uint8)).ravel()
    array([  0,  50,  50, 100], dtype=uint8)
    """
    address, step, width, height, channels = pixels(image, "image", ANY)
    centre_weight = whole(centre_weight, "centre_weight", 0, 256)
    if height < 3:
        raise Error(Status.SIZE_ERR, "image", f"shape {image.shape} given, 3 rows wanted")
    out, to, to_step = target(out, image.shape, image)
    # As bytes: of three channels the operation would filter the padding of rows as well.
    status = lib.qv_deinterlace(BYTES, address, step, to, to_step, Size(width * channels, height),
                                centre_weight, _WHOLE_FRAME)
    if status:
        raise failed(status, "image")
    return out


def deinterlace_bob(image: Image, first: str = "top", centre_weight: int = 0,
                    out: Optional[Tuple[Image, Optional[Image]]] = None,
                    ) -> Tuple[Image, Optional[Image]]:
    """Makes each of a frame's two fields a frame of its own, in the order of time, for twice as
    many frames a second. The frame, of at least 2 rows, is (H, W) or (H, W, 2 to 4); its fields are
    rows 0, 2, 4 ..., the top one, and 1, 3, 5 ..., the bottom one.

    first          "top" or "bottom", the field that is first in time
    centre_weight  0: rows between the field's lines become their mean; 256: copies of the line of
                   the same two rows; between: f = (256 - centre_weight) / 2 truncated,
                   (near (256 - f) + far f + 128) / 256
    out            both arrays; the second one may be None: it is not made then

    Errors: fewer rows; names or numbers other than those; `out` overlapping `image`.

    >>> top, bottom = deinterlace_bob(np.array([[0], [10], [100], [30]], np.uint8))
    >>> top.ravel(), bottom.ravel()
    (array([  0,  50, 100, 100], dtype=uint8), array([10, 10, 20, 30], dtype=uint8))
    """
    address, step, width, height, channels = pixels(image, "image", ANY)
    order = code(FIELD_ORDERS, first, "first")
    centre_weight = whole(centre_weight, "centre_weight", 0, 256)
    if height < 2:
        raise Error(Status.SIZE_ERR, "image", f"shape {image.shape} given, 2 rows wanted")
    one, two = pair(out)
    one, to, to_step = target(one, image.shape, image, argument="out[0]")
    second = second_step = 0
    if two is not None or out is None:
        two, second, second_step = target(two, image.shape, image, one, argument="out[1]")
    status = lib.qv_deinterlace_bob(address, step, to, to_step, second, second_step,
                                    Size(width * channels, height), order, centre_weight)
    if status:
        raise failed(status, "image")
    return one, two


def weave(first: Image, second: Image, first_field: str = "top",
          out: Optional[Image] = None) -> Image:
    """Makes a frame of two fields, (h, W) or (h, W, 2 to 4), `first` the first in time, which is
    the `first_field`, "top" or "bottom". Of an odd height the top field has one row more. The
    fields of a frame are frame[0::2] and frame[1::2], without a copy.

    Errors: fields that do not fit each other; `out` overlapping one.

    >>> weave(np.array([[1], [3]], np.uint8), np.array([[2], [4]], np.uint8)).ravel()
    array([1, 2, 3, 4], dtype=uint8)
    """
    one, one_step, width, height, channels = pixels(first, "first", ANY)
    two, two_step, _, rows, _ = pixels(second, "second", ANY)
    order = code(FIELD_ORDERS, first_field, "first_field")
    top, bottom = (height, rows) if order == 0 else (rows, height)
    if first.shape[1:] != second.shape[1:] or not 0 <= top - bottom <= 1:
        raise Error(Status.SIZE_ERR, "second",
                    f"shape {second.shape} does not fit that of first, {first.shape}")
    shape = (height + rows,) + first.shape[1:]
    out, to, to_step = target(out, shape, first, second)
    status = lib.qv_weave(one, one_step, two, two_step, to, to_step,
                          Size(width * channels, height + rows), order)
    if status:
        raise failed(status)
    return out
