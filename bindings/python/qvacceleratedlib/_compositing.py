"""One image over another."""
from __future__ import annotations

from typing import Optional, Sequence, Tuple

import numpy as np

from ._arrays import (TYPES, UINT8, Image, byte_of, in_place, pair, pixels, point_of, same_size,
                      separate, target)
from ._codes import OPERATIONS, PREMULTIPLIED, code
from ._errors import Error, Status, failed
from ._library import Size, lib

_PAIRS = ((1, 1), (3, 3), (3, 4), (4, 4))


def overlay(frame: Image, foreground: Image, at: Sequence[int] = (0, 0),
            alpha: Optional[Image] = None, opacity: int = 255, *, premultiplied: bool = False,
            out: Optional[Image] = None) -> Image:
    """A foreground with alpha over a frame: a logo, a subtitle, a fade. In place with out=frame.

    foreground     (h, w) over (H, W), (h, w, 3) over (H, W, 3), or (h, w, 4), the fourth channel
                   alpha, over (H, W, 3) or (H, W, 4), whose fourth channel stays as it is
    at             (x, y), the pixel of the frame that the top-left one comes to lie on, anywhere
    alpha          the alpha (h, w) of a foreground without a fourth channel; opaque if left out
    opacity        0 to 255
    premultiplied  the foreground's colours are multiplied by its alpha

    With F a byte of the foreground, a its alpha, B that of the frame and o the opacity, rounded to
    nearest, once (Porter and Duff 1984, over):
        F a o / 65025 + B (1 - a o / 65025)
        F o / 255 + B (1 - a o / 65025), at most 255, if premultiplied

    Errors: shapes or numbers other than those; `out` overlapping what is laid over it.

    >>> black, white = np.zeros((1, 3), np.uint8), np.full((1, 2), 255, np.uint8)
    >>> overlay(black, white, at=(1, 0), opacity=128)
    array([[  0, 128, 128]], dtype=uint8)
    """
    fg, fg_step, width, height, channels = pixels(foreground, "foreground", (1, 3, 4))
    described = pixels(frame, "frame", (1, 3, 4), out is frame)
    under = described[4]
    if (under, channels) not in _PAIRS:
        raise Error(Status.CHANNEL_ERR, "foreground",
                    f"{channels} channels do not go over the frame's {under}")
    plane = plane_step = 0
    if alpha is not None:
        if channels == 4:
            raise Error(Status.BAD_ARG_ERR, "alpha", "the foreground's fourth channel is its alpha")
        plane, plane_step, _, _, _ = pixels(alpha, "alpha", (1,))
        same_size(alpha, "alpha", width, height)
    opacity = byte_of(opacity, "opacity")
    x, y = point_of(at, "at", -2**31)
    out, (to, to_step, columns, rows, _) = in_place(frame, described, out, foreground, alpha)
    status = lib.qv_over(under, to, to_step, Size(columns, rows), channels, fg, fg_step,
                         Size(width, height), plane, plane_step, x, y, opacity,
                         PREMULTIPLIED if premultiplied else 0)
    if status and status != Status.NO_OVERLAP_WARNING:  # outside: the frame as it was
        raise failed(status)
    return out


def compose(first: Image, second: Image, operation: str = "over", alpha1: int = 255,
            alpha2: int = 255, *, premultiplied: bool = False,
            out: Optional[Image] = None) -> Image:
    """Two images (H, W) or (H, W, 3), each under one alpha of 0 to 255 for all of it (Porter and
    Duff 1984). With A and B their bytes, a and b their alphas, x y = floor(xy / 255), worked out
    from left to right, and sums limited to 255:
        "over"  A a + B b (255 - a)                 premultiplied  A + B (255 - a)
        "in"    A a b                                              A b
        "out"   A a (255 - b)                                      A (255 - b)
        "atop"  A a b + B b (255 - a)                              A b + B (255 - a)
        "xor"   A a (255 - b) + B b (255 - a)                      A (255 - b) + B (255 - a)
        "plus"  A a + B b                                          A + B
    `out` may be one of the images.

    Errors: shapes, names or numbers other than those; `out` overlapping an image in part.

    >>> compose(np.array([[200]], np.uint8), np.array([[100]], np.uint8), alpha1=128)
    array([[149]], dtype=uint8)
    """
    a, a_step, width, height, channels = pixels(first, "first", TYPES)
    b, b_step, _, _, _ = pixels(second, "second", TYPES)
    if second.shape != first.shape:
        raise Error(Status.SIZE_ERR, "second", f"shape {second.shape} given, {first.shape} wanted")
    kind = code(OPERATIONS, operation, "operation")
    alpha1, alpha2 = byte_of(alpha1, "alpha1"), byte_of(alpha2, "alpha2")
    out, to, to_step = target(out, first.shape)
    separate(out, "out", None if (to, to_step) == (a, a_step) else first,
             None if (to, to_step) == (b, b_step) else second)
    status = lib.qv_alpha_comp_c(TYPES[channels], a, a_step, alpha1, b, b_step, alpha2, to, to_step,
                                 Size(width, height), kind + PREMULTIPLIED * bool(premultiplied))
    if status:
        raise failed(status)
    return out


def merge_alpha_over(foreground: Image, foreground_alpha: Image, background: Image,
                     background_alpha: Image,
                     out: Optional[Tuple[Image, Image]] = None) -> Tuple[Image, Image]:
    """A colour image (H, W, 3) under an alpha plane (H, W) over a second one: (colours, alpha) of
    the result. With F and B their bytes, f and b the alphas,
        a  = min(255, f + (255 - f) b / 256)
        F' = (F f / 255 + (1 - f / 255) (b / 255) B) / ((a + 1) / 255)
    in single precision, rounded to nearest (without SSE2 in integers, see qv.h). `out` is both
    arrays: out[0] may be the foreground; out[1] is a plane whose rows are as far apart as those of
    foreground_alpha, and none of the four.

    Errors: other shapes; rows of foreground_alpha that overlap; `out` overlapping an image.

    >>> colour, opaque = np.full((1, 1, 3), 90, np.uint8), np.full((1, 1), 255, np.uint8)
    >>> merge_alpha_over(colour, opaque, np.zeros_like(colour), opaque)[1]
    array([[255]], dtype=uint8)
    """
    colours, alpha = pair(out)
    described = pixels(foreground, "foreground", (3,), colours is foreground)
    width, height = described[2:4]
    ground, ground_step, _, _, _ = pixels(background, "background", (3,))
    fa, fa_step, _, _, _ = pixels(foreground_alpha, "foreground_alpha", (1,))
    ba, ba_step, _, _, _ = pixels(background_alpha, "background_alpha", (1,))
    for array, name in ((background, "background"), (foreground_alpha, "foreground_alpha"),
                        (background_alpha, "background_alpha")):
        same_size(array, name, width, height)
    if height > 1 and abs(fa_step) < width:
        raise Error(Status.STEP_ERR, "foreground_alpha", "its rows overlap")
    planes = (background, foreground_alpha, background_alpha)
    given = alpha is not None
    if alpha is None:
        alpha = np.empty((height, abs(fa_step)), UINT8)[:, :width]
        alpha = alpha if fa_step > 0 else alpha[::-1]
    alpha, a, a_step = target(alpha, (height, width), *((foreground, *planes) if given else ()),
                              argument="out[1]")
    if a_step != fa_step and height > 1:
        raise Error(Status.STEP_ERR, "out[1]",
                    f"rows {a_step} bytes apart, {fa_step} as of foreground_alpha wanted")
    if colours is not None:
        separate(alpha, "out[1]", colours)
    colours, (f, f_step, _, _, _) = in_place(foreground, described, colours, *planes)
    alpha[...] = foreground_alpha
    status = lib.qv_merge_alpha_over(0, f, f_step, fa, fa_step, ground, ground_step, ba, ba_step, a,
                                     3 * width, width, height)
    if status:
        raise failed(status)
    return colours, alpha


def merge_alpha_plus(image: Image, source: Image, alpha: Image,
                     out: Optional[Image] = None) -> Image:
    """Mixes `source` into `image`, both (H, W) or (H, W, 3), under an alpha plane (H, W). With S
    and D their bytes and a the alpha of their pixel,
        min(255, floor(a S / 255) + floor(((255 - a) D + 1) / 256))
    In place with out=image. Where a is 0, a D of 255 becomes 254.

    Errors: other shapes; `out` overlapping `source` or `alpha`.

    >>> grey = np.array([[100]], np.uint8)
    >>> merge_alpha_plus(grey, np.array([[200]], np.uint8), np.array([[128]], np.uint8))
    array([[149]], dtype=uint8)
    """
    s, s_step, width, height, channels = pixels(source, "source", TYPES)
    a, a_step, _, _, _ = pixels(alpha, "alpha", (1,))
    same_size(alpha, "alpha", width, height)
    described = pixels(image, "image", TYPES, out is image)
    if image.shape != source.shape:
        raise Error(Status.SIZE_ERR, "source", f"shape {source.shape} given, {image.shape} wanted")
    out, (to, to_step, _, _, _) = in_place(image, described, out, source, alpha)
    status = lib.qv_merge_alpha_plus(TYPES[channels], to, to_step, s, s_step, a, a_step, width,
                                     height)
    if status:
        raise failed(status)
    return out
