"""Finds and opens the C library, and says what its functions take (qv.h)."""
from __future__ import annotations

import ctypes
import operator
import sys
from pathlib import Path


class Size(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int)]


class Rect(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("x", "y", "width", "height")]


class ResampleOptions(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("pixels", "filter", "position", "narrow")] + [
        (name, ctypes.c_double) for name in (
            "region_x", "region_y", "region_width", "region_height",
            "src_phase_x", "src_phase_y", "dst_phase_x", "dst_phase_y", "cubic")]


class _Int:
    """A whole number that ctypes passes on as a C int, in half the time that c_int takes."""

    from_param = operator.index


# Pointers are addresses: an int costs a call less than any pointer object.
LETTERS = {
    "p": ctypes.c_void_p, "s": ctypes.c_char_p, "S": Size, "R": Rect,
    "i": _Int, "u": _Int, "b": ctypes.c_ubyte, "d": ctypes.c_double,
}
RESULTS = {"i": ctypes.c_int, "s": ctypes.c_char_p, "S": Size}

# Every function of qv.h: what it returns, and after the colon its parameters, a letter each.
SIGNATURES = {
    "qv_copy": "i:ipipiS",
    "qv_dup": "i:ipipiS",
    "qv_set": "i:ippiS",
    "qv_mirror": "i:ipipiSi",
    "qv_lut_palette": "i:ipipiSpi",
    "qv_mul_c_scale": "i:ibpiS",
    "qv_crc32": "i:ipip",
    "qv_adler32": "i:ipip",
    "qv_ycbcr420": "i:ipipippS",
    "qv_ycbcr422_to_ycrcb420": "i:ipippS",
    "qv_ycbcr420_to_bgr": "i:ipppiS",
    "qv_ycbcr422_to_bgr": "i:ipipiS",
    "qv_resize": "i:ipSiRpiSddi",
    "qv_resize_yuv422": "i:ipSiRpiSddi",
    "qv_rotate": "i:ipSiRpiRdddi",
    "qv_warp_perspective": "i:ipSiRpiRpi",
    "qv_warp_perspective_ex": "i:ipSiRpiRpipipip",
    "qv_get_perspective_transform": "i:iRpp",
    "qv_get_rotate_bound": "i:iRpddd",
    "qv_alpha_comp_c": "i:ipibpibpiSi",
    "qv_merge_alpha_over": "i:ipipipipipiii",
    "qv_merge_alpha_plus": "i:ipipipiii",
    "qv_deinterlace": "i:ipipiSuu",
    "qv_version": "s:",
    "qv_status_name": "s:i",
    "qv_status_text": "s:i",
    "qv_threads": "i:",
    "qv_set_threads": "i:i",
    "qv_set_thread_limit": "i:i",
    "qv_level": "s:",
    "qv_levels": "s:",
    "qv_set_level": "i:s",
    "qv_row_bytes": "i:ii",
    "qv_source_position": "i:SRSddiiip",
    "qv_warp_source_position": "i:Rpddp",
    "qv_yuv_to_rgb": "i:ippipiSiii",
    "qv_rgb_to_yuv": "i:ipiippSiii",
    "qv_resample": "i:pSipSip",
    "qv_over": "i:ipiSipiSpiiiii",
    "qv_deinterlace_bob": "i:pipipiSii",
    "qv_weave": "i:pipipiSi",
    "qv_invert_transform": "i:pp",
    "qv_rotation_canvas": "i:Sdpp",
}


def _open() -> ctypes.CDLL:
    """The library that a wheel brings; else the one of the system's package. ctypes.CDLL releases
    the interpreter's lock around every call."""
    if sys.platform == "win32":
        beside, installed = "qvAcceleratedLibC.dll", "qvAcceleratedLibC.dll"
    else:
        beside, installed = "libqvAcceleratedLibC.so", "libqvAcceleratedLibC.so.0"
    path = Path(__file__).resolve().parent / beside
    library = ctypes.CDLL(str(path) if path.exists() else installed)
    for name, signature in SIGNATURES.items():
        function = getattr(library, name)
        function.restype = RESULTS[signature[0]]
        function.argtypes = [LETTERS[letter] for letter in signature[2:]]
    return library


lib = _open()
