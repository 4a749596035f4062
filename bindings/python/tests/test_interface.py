"""The package beside the C header and the roll; its examples; the self-test's digests."""
import doctest
import hashlib
import importlib
import inspect
import itertools
import pickle
import re
import shutil
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import qvacceleratedlib as qv
from qvacceleratedlib import _codes, _library

ROOT = Path(__file__).resolve().parents[3]
HEADER = (ROOT / "include/qvAcceleratedLib/qv.h").read_text()
importlib.import_module("qvacceleratedlib.batch.__main__")  # with all that it needs
MODULES = sorted(name for name in sys.modules if name.split(".")[0] == "qvacceleratedlib")


def letter(parameter):
    kind = re.sub(r"\w+(\[\d*\])?$", "*" if "[" in parameter else "", parameter).strip()
    if "*" in kind:
        return "s" if kind == "const char*" or parameter == "const char* level" else "p"
    return {"int": "i", "unsigned int": "u", "unsigned char": "b", "double": "d", "qv_size": "S",
            "qv_rect": "R", "": ""}[kind]


def test_every_function_has_the_headers_signature_and_is_used():
    declared = {}
    functions = re.findall(r"^QV_API\((.*?)\) (\w+)\((.*?)\);", HEADER, re.M | re.S)
    for result, name, parameters in functions:
        letters = map(letter, re.split(r",\s*", parameters.replace("void", "")))
        declared[name] = ("i" if result == "int" else "s") + ":" + "".join(letters)
    assert _library.SIGNATURES == declared
    roll = (ROOT / "qvAcceleratedLib/Operations.def").read_text()
    assert set(re.findall(r"^QV_OPERATION\(\w+, \w+, (\w+)\)", roll, re.M)) <= declared.keys()
    source = "".join(path.read_text() for path in Path(qv.__file__).parent.glob("*.py"))
    assert [name for name in declared if not re.search(rf"\b_?lib\.{name}\b", source)] == []


def test_constants_are_the_headers():
    own = [f"QV_STATUS_{status.name} = {int(status)}" for status in qv.Status]
    own += [f"QV_LAYOUT_{name.upper()} = {code}" for name, code in _codes.LAYOUTS.items()]
    assert sorted(own) == sorted(re.findall(r"QV_(?:STATUS|LAYOUT)_\w+ = -?\d+", HEADER))
    assert all(_codes.LAYOUTS[frame.layout] == frame.code for frame in qv.Frame.__subclasses__())
    line = (ROOT / "include/qvAcceleratedLib/CqvAccLib.h").read_text()
    assert f'#define QVACCELERATEDLIB_VERSION "{qv.__version__}"' in line


@pytest.mark.parametrize("module", MODULES)
def test_examples(module):
    found = doctest.testmod(sys.modules[module], extraglobs={"np": np})
    assert found.failed == 0


def test_every_function_is_typed_and_has_an_example():
    for name, function in inspect.getmembers(qv, inspect.isfunction):
        if name in qv.__all__:
            assert ">>> " in function.__doc__, name
            hints = function.__annotations__.keys()
            assert hints == {*inspect.signature(function).parameters, "return"}, name


def test_readme():
    text = (ROOT / "README.md").read_text()
    example, = re.findall(r"```python\n(.*?)```", text, re.S)
    exec(compile(example, "README.md", "exec"), {})


@pytest.mark.skipif(not shutil.which("ffmpeg"), reason="there is no ffmpeg")
def test_camera_example():
    frames = np.random.default_rng(1).integers(0, 256, (3, 480, 640, 2), np.uint8)
    written = subprocess.run(
        [sys.executable, str(ROOT / "examples/camera.py"), "-f", "rawvideo", "-pix_fmt", "yuyv422",
         "-s", "640x480", "-i", "-"], input=frames.tobytes(), stdout=subprocess.PIPE, check=True)
    assert written.stdout == b"".join(
        qv.resize(qv.mirror(qv.convert(qv.Yuyv(frame), "bgr", matrix="bt601")), (320, 240), "area")
        .tobytes() for frame in frames)


def test_process():
    threads, level = qv.threads, qv.level
    qv.threads = 3
    with qv.thread_limit(1), qv.thread_limit(2):
        assert qv.threads == 3
    qv.threads = threads
    qv.level = level
    assert level == qv.levels()[-1]
    for name, value in (("threads", 0), ("threads", 257), ("level", "mmx")):
        with pytest.raises(qv.Error, match=name):
            setattr(qv, name, value)
    error = qv.Error(-6, "image", "small")
    assert str(pickle.loads(pickle.dumps(error))) == str(error)
    assert error.name == "QV_STATUS_SIZE_ERR"


def noise(row, rows, seed):
    """All bytes of an image of the self-test, which has five bytes of padding, two rows and 16
    bytes around it, and the image."""
    step = row + 5
    powers = np.cumprod(np.full(step * (rows + 4) + 32, 1664525, np.uint32), dtype=np.uint32)
    sums = np.cumsum(np.r_[np.uint32(1), powers[:-1]], dtype=np.uint32)
    whole = (powers * np.uint32(seed) + sums * np.uint32(1013904223) >> 24).astype(np.uint8)
    return whole, whole[16 + 2 * step:][:step * rows].reshape(rows, step)[:, :row]


def test_digests_are_those_of_the_selftest():
    expected = dict(re.findall(r'Op::(\w+),\s*"(\w+)"',
                               (ROOT / "tools/selftest/Expected.inc").read_text()))
    several = [(23, 5), (200, 9), (131, 301)]
    seeds = itertools.count(44)  # after those of the copies

    def digest(calls):
        result = hashlib.sha256()
        for call, rows, *rest in calls:
            images = [(c, *noise(c * w, rows, next(seeds))) for w, c in rest]
            call(*(image.reshape(rows, -1, 3) if c == 3 else image for c, _, image in images))
            result.update(bytes(8) + images[-1][1].tobytes())
        return result.hexdigest()

    assert expected["qvDup"] == digest(
        (qv.grey_to_bgr, h, (w, 1), (w, 3)) for w, h in [(1, 1)] + several)
    assert expected["qvSet"] == digest(
        (lambda out, value=value: qv.fill(out, value), h, (w, c))
        for c, value in ((1, 17), (3, (17, 201, 99))) for w, h in [(1, 1)] + several)
    assert expected["qvMirror"] == digest(
        (lambda image, out, axis=axis: qv.mirror(image, axis, out), h, (w, c), (w, c))
        for c in (1, 3) for axis in ("horizontal", "vertical", "both") for w, h in several)
