"""Files by path, and by the addresses of fsspec (https://..., s3://..., memory://...)."""
from __future__ import annotations

import contextlib
import os
import uuid
from typing import Any, List, Optional, Tuple, Union

# Size in bytes, and what changes with the content: nanoseconds, or a store's own mark.
Stamp = Tuple[int, Union[int, str]]

# Stores where a file appears when all of it has arrived, and where renaming would copy it.
_APPEAR_WHOLE = {"s3", "s3a", "gs", "gcs", "abfs", "abfss", "az", "adl", "oss"}
_TIMES = ("mtime", "LastModified", "last_modified", "updated", "ETag", "etag", "created")


def reason(error: OSError) -> str:
    """What went wrong with which file, without a number."""
    if error.strerror is None or error.filename is None:
        return error.strerror or str(error)
    return f"{error.filename}: {error.strerror}"


def is_remote(name: str) -> bool:
    return "://" in name


def absolute(name: str) -> str:
    """The full path, or the address as it is."""
    if name.startswith("file://"):
        name = name[len("file://"):]
    return name if is_remote(name) else os.path.abspath(name)


def join(folder: str, name: str) -> str:
    return f"{folder.rstrip('/')}/{name}"


def _open(address: str) -> Tuple[Any, str]:
    try:
        from fsspec.core import url_to_fs  # type: ignore[import]
    except ImportError:
        raise OSError(f"{address}: addresses need fsspec (Debian: python3-fsspec)") from None
    try:
        files, path = url_to_fs(address)
        return files, path
    except (ValueError, ImportError) as error:  # a protocol that is unknown, or not installed
        raise OSError(f"{address}: {error}") from None


def expand(name: str) -> List[str]:
    """The files that an address with wildcards stands for. Those of paths are the shell's work."""
    if not is_remote(name) or "*" not in name:
        return [name]
    files, pattern = _open(name)
    start = name.split("://")[0] + "://"
    return sorted(found if is_remote(found) else start + found.lstrip("/")
                  for found in files.glob(pattern))


def stamp(name: str) -> Optional[Stamp]:
    """None where there is no such file."""
    try:
        if not is_remote(name):
            about = os.stat(name)
            return about.st_size, about.st_mtime_ns
        files, path = _open(name)
        files.invalidate_cache()
        found = files.info(path)
    except (FileNotFoundError, NotADirectoryError):
        return None
    return found["size"], next((str(found[key]) for key in _TIMES if found.get(key)), "")


def fetch(address: str, path: str) -> None:
    files, source = _open(address)
    files.get_file(source, path)


def send(path: str, address: str) -> None:
    """Copies a file to an address, where it appears when it is complete."""
    files, target = _open(address)
    files.makedirs(files._parent(target), exist_ok=True)
    protocol = files.protocol if isinstance(files.protocol, str) else files.protocol[0]
    if protocol in _APPEAR_WHOLE:
        files.put_file(path, target)
        return
    part = f"{target}.{uuid.uuid4().hex}"
    try:
        files.put_file(path, part)
        files.mv(part, target)
    except BaseException:
        if files.exists(part):
            files.rm_file(part)
        raise


def remove(name: str) -> None:
    with contextlib.suppress(FileNotFoundError):
        if is_remote(name):
            files, path = _open(name)
            files.rm_file(path)
        else:
            os.unlink(name)


def read(name: str) -> Optional[bytes]:
    """All of a file; None where there is none."""
    try:
        if not is_remote(name):
            with open(name, "rb") as file:
                return file.read()
        files, path = _open(name)
        content: bytes = files.cat_file(path)
        return content
    except FileNotFoundError:
        return None


def write(name: str, content: bytes, scratch: str) -> None:
    """Replaces a file at once; `scratch` is a folder, of the same file system if the file is."""
    part = os.path.join(scratch, uuid.uuid4().hex)
    try:
        with open(part, "wb") as file:
            file.write(content)
        if is_remote(name):
            send(part, name)
        else:
            os.replace(part, name)
    finally:
        remove(part)
