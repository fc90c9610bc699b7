"""What the reader view and the editable document share: failures, sources,
tag lists."""

import ctypes
import os
from types import MappingProxyType

from . import _library, _names
from .errors import ArgumentError, ERROR_ARGUMENT, ERROR_NOT_FOUND, error_for
from .values import decode


def failure(lib, filename=None, errno=None):
    """The exception of the calling thread's last failed library call."""
    code = lib.zExifGetLastError()
    text = lib.c.zExifGetErrorText(code).decode("utf-8", "replace")
    return error_for(code, text, filename, errno)



def closed():
    return ArgumentError(ERROR_ARGUMENT, "the file is closed")


def source_of(source):
    """(path as bytes, None) for a path, (None, bytes) for the file's bytes."""
    if isinstance(source, (bytes, bytearray, memoryview)):
        return None, bytes(source)
    if isinstance(source, str):
        return os.fsencode(source), None
    if isinstance(source, os.PathLike):
        return os.fsencode(source), None
    raise ArgumentError(ERROR_ARGUMENT, "a path or the bytes of a file, not %s" % type(source).__name__)


def tag_list(lib, getter, handle, ifd):
    """[(tag, type, count, value)] of one IFD in entry order, or None where the
    file has no such IFD."""
    out = ctypes.POINTER(_library.TifTagList)()
    if getter(handle, ifd, ctypes.byref(out)) != 0:
        if lib.zExifGetLastError() == ERROR_NOT_FOUND:
            return None
        raise failure(lib)
    try:
        tags = []
        listed = out.contents
        for index in range(listed.count):
            item = listed.items[index].contents
            tags.append((item.tag, item.type, item.count, decode(item.type, item.count, item.data)))
        return tags
    finally:
        lib.c.zExifFreeTagList(out)


def keyed(ifd, tags):
    """A tag list as a dict by key; of two tags with one key the first counts."""
    mapping = {}
    for tag, _type, _count, value in tags:
        mapping.setdefault(_names.key_of(ifd, tag), value)
    return mapping


def merged(ifd_dicts):
    """IFD 0, Exif and GPS tags in one read-only mapping; names are unique,
    a number found in several IFDs resolves to the first of them."""
    mapping = {}
    for one in ifd_dicts:
        for key, value in one.items():
            mapping.setdefault(key, value)
    return MappingProxyType(mapping)


FORMATS = {1: "jpeg", 2: "tiff"}
