"""Between frames of luma and chroma and pixels."""
from __future__ import annotations

from typing import Any, Optional, Tuple, Type, Union

from ._arrays import Image, pixels, target
from ._codes import LAYOUTS, MATRICES, RGB_LAYOUTS, SITINGS, code
from ._errors import Error, Status, failed, shown
from ._frames import FRAMES, F, Frame, I420, Nv12, Yuyv, Yv12
from ._library import Size, lib

_CHANNELS = {"grey": 1, "bgr": 3, "rgb": 3, "bgra": 4, "rgba": 4}
_PLAIN_LAYOUTS = {1: "grey", 3: "bgr", 4: "bgra"}


def convert(image: Union[Image, Frame], to: Union[str, Type[Frame]], layout: Optional[str] = None,
            *, matrix: str = "bt601", full_range: bool = False, siting: str = "repeated",
            out: Any = None) -> Any:
    """Makes a frame of luma and chroma into pixels, or pixels into a frame.

    image       a frame (Yuyv, Nv12, ...), or pixels (H, W), (H, W, 3) or (H, W, 4)
    to          of a frame: "grey", "bgr", "rgb", "bgra" (alpha 255) or "rgba"; of pixels: a class
                of frames or its layout, "yuyv", "nv12", ...
    layout      how the pixels lie: "grey", "bgr", "bgra" as their channels say; "rgb" or "rgba"
    matrix      "bt601", "bt709" or "bt2020", the ITU-R recommendation of that number
    full_range  Y, Cb and Cr of 0 to 255 (JFIF) instead of 16 to 235 and 16 to 240
    siting      where chroma of half the width lies: "repeated" (one sample for a block), "left"
                (MPEG-2 and later) or "centre" (MPEG-1, JPEG), interpolated

    With the matrix's weights Kr, Kg, Kb and y, u, v what the bytes stand for,
        R = y + 2 (1 - Kr) v,  B = y + 2 (1 - Kb) u,
        G = y - 2 (1 - Kr) Kr / Kg v - 2 (1 - Kb) Kb / Kg u
    each byte within 0.54 of the exact value. Back, each within 0.53; chroma is made of the mean of
    the pixels that it serves. An Nv12 frame can also become an "i420" one, and a Yuyv frame a
    "yv12" one (nv12_to_i420, yuyv_to_yv12), with the samples as they are.

    Errors: names other than those; shapes that do not fit; `out` overlapping `image`.

    >>> grey = I420.from_buffer(bytes([126] * 4 + [128] * 2), 2, 2)
    >>> convert(grey, "bgr")[0]
    array([[128, 128, 128],
           [128, 128, 128]], dtype=uint8)
    >>> convert(np.full((2, 2, 3), 128, np.uint8), Nv12).planes[0]
    array([[126, 126],
           [126, 126]], dtype=uint8)
    """
    name: Any = getattr(to, "layout", to)
    kind = code(LAYOUTS, name, "to")
    constants = (code(MATRICES, matrix, "matrix"), int(bool(full_range)),
                 code(SITINGS, siting, "siting"))
    if isinstance(image, Frame):
        if name in _CHANNELS:
            return _to_pixels(image, kind, _CHANNELS[name], constants, out)
        if isinstance(image, Nv12) and name == "i420":
            return nv12_to_i420(image, out)
        if isinstance(image, Yuyv) and name == "yv12":
            return yuyv_to_yv12(image, out)
        raise Error(Status.DATA_TYPE_ERR, "to", f"{image!r} does not become {name!r}")
    if name in _CHANNELS:
        raise Error(Status.DATA_TYPE_ERR, "image",
                    f"a frame (Yuyv, I420, ...) becomes {name!r}, not a {type(image).__name__}")
    return _to_frame(image, layout, FRAMES[name], constants, out)


def _to_pixels(frame: Frame, kind: int, channels: int, constants: Tuple[int, ...],
               out: Optional[Image]) -> Image:
    shape = (frame.height, frame.width)
    out, to, to_step = target(out, shape if channels == 1 else shape + (channels,), *frame.memory)
    status = lib.qv_yuv_to_rgb(frame.code, *frame.tables, kind, to, to_step, Size(*frame.size),
                               *constants)
    if status:
        raise failed(status)
    return out


def _to_frame(image: Image, layout: Optional[str], made: Type[F], constants: Tuple[int, ...],
              out: Optional[F]) -> F:
    address, step, width, height, channels = pixels(image, "image", (1, 3, 4))
    layout = layout or _PLAIN_LAYOUTS[channels]
    kind = code(RGB_LAYOUTS, layout, "layout")
    if _CHANNELS[layout] != channels:
        raise Error(Status.DATA_TYPE_ERR, "layout",
                    f"{layout!r} has {_CHANNELS[layout]} channels, the image {channels}")
    out = _frame_out(out, made, (width, height), image)
    status = lib.qv_rgb_to_yuv(kind, address, step, out.code, *out.tables, Size(width, height),
                               *constants)
    if status:
        raise failed(status)
    return out


def _frame_out(out: Optional[F], made: Type[F], size: Tuple[int, int], *sources: Image) -> F:
    """The frame to write: `out`, or a new one."""
    if out is None:
        return made.empty(*size)
    if not isinstance(out, made) or out.size != size:
        raise Error(Status.SIZE_ERR, "out",
                    f"{made.__name__}({size[0]} x {size[1]}) wanted, not {shown(out)}")
    out.written("out", *sources)
    return out


def _checked(frame: object, kind: Type[Frame]) -> None:
    """Refuses frames with a part that the class's operations leave unwritten."""
    if not isinstance(frame, kind):
        raise Error(Status.DATA_TYPE_ERR, "frame",
                    f"{kind.__name__} wanted, not {type(frame).__name__}")
    if frame.width % 2 or frame.height % 2:
        raise Error(Status.SIZE_ERR, "frame", f"{frame!r} has an odd width or height")


def nv12_to_i420(frame: Nv12, out: Optional[I420] = None) -> I420:
    """The three planes Y, Cb, Cr of a two-plane frame of even size, their bytes as they are.

    Errors: another kind of frame; an odd size; `out` of another size, or overlapping `frame`.

    >>> nv12_to_i420(Nv12.from_buffer(bytes([1, 2, 3, 4, 5, 6]), 2, 2)).tobytes()
    b'\\x01\\x02\\x03\\x04\\x05\\x06'
    """
    _checked(frame, Nv12)
    out = _frame_out(out, I420, frame.size, *frame.memory)
    (luma, chroma), (luma_step, chroma_step) = frame.addresses, frame.steps
    status = lib.qv_ycbcr420(0, luma, luma_step, chroma, chroma_step, *out.tables,
                             Size(*frame.size))
    if status:
        raise failed(status, "frame")
    return out


def yuyv_to_yv12(frame: Yuyv, out: Optional[Yv12] = None) -> Yv12:
    """Packed 4:2:2 of even size as planes Y, Cr, Cb of 4:2:0. The chroma of each two rows is that
    of the upper one.

    Errors: another kind of frame; an odd size; `out` of another size, or overlapping `frame`.

    >>> yuyv_to_yv12(Yuyv.from_buffer(bytes([1, 2, 3, 4, 5, 6, 7, 8]), 2, 2)).tobytes()
    b'\\x01\\x03\\x05\\x07\\x04\\x02'
    """
    _checked(frame, Yuyv)
    out = _frame_out(out, Yv12, frame.size, *frame.memory)
    status = lib.qv_ycbcr422_to_ycrcb420(0, frame.addresses[0], frame.steps[0], *out.tables,
                                         Size(*frame.size))
    if status:
        raise failed(status, "frame")
    return out


def i420_to_bgr_exact_api(frame: I420, out: Optional[Image] = None) -> Image:
    """Planar 4:2:0 of even size as B, G, R with the bytes of the C++ class, BT.601 in studio range.
    With u = Cb - 128 and v = Cr - 128:
        B = clamp((76284 Y + 132186 u - 1187776) >> 16)
        G = clamp((76284 Y - 25690 u - 53281 v - 1187776) >> 16)
        R = clamp((76284 Y + 104595 v - 1187776) >> 16)

    Errors: another kind of frame; an odd size; `out` of another size, or overlapping `frame`.

    >>> i420_to_bgr_exact_api(I420.from_buffer(bytes([235] * 4 + [128] * 2), 2, 2))[0, 0]
    array([255, 255, 255], dtype=uint8)
    """
    _checked(frame, I420)
    out, to, to_step = target(out, (frame.height, frame.width, 3), *frame.memory)
    status = lib.qv_ycbcr420_to_bgr(0, *frame.tables, to, to_step, Size(*frame.size))
    if status:
        raise failed(status, "frame")
    return out


def yuyv_to_bgr_exact_api(frame: Yuyv, out: Optional[Image] = None) -> Image:
    """Packed 4:2:2 as B, G, R with the bytes of the C++ class, BT.601 in studio range, rounded
    down:
        B = clamp((76284 Y + 132186 Cb - 18140365) >> 16)
        G = clamp((76284 Y - 53281 Cr - 25690 Cb + 8887730) >> 16)
        R = clamp((76284 Y + 104595 Cr - 14608761) >> 16)
    convert() rounds to the nearest byte instead.

    Errors: another kind of frame; a width of 1; `out` of another size, or overlapping `frame`.

    >>> yuyv_to_bgr_exact_api(Yuyv.from_buffer(bytes([235, 128, 16, 128]), 2, 1))[0]
    array([[254, 254, 254],
           [  0,   0,   0]], dtype=uint8)
    """
    if not isinstance(frame, Yuyv):
        raise Error(Status.DATA_TYPE_ERR, "frame", f"Yuyv wanted, not {type(frame).__name__}")
    out, to, to_step = target(out, (frame.height, frame.width, 3), *frame.memory)
    status = lib.qv_ycbcr422_to_bgr(0, frame.addresses[0], frame.steps[0], to, to_step,
                                    Size(*frame.size))
    if status:
        raise failed(status, "frame", f"{frame!r} has no pair of pixels")
    return out
