"""Tag names and IFD ids, through the library's table, remembered once asked."""

import ctypes

from . import _library
from .errors import ArgumentError, NotFound, ERROR_ARGUMENT, ERROR_NOT_FOUND

IFD_EXIF = 0x10000
IFD_GPS = 0x10001
IFD_INTEROP = 0x10002

_IFD_WORDS = {"exif": IFD_EXIF, "gps": IFD_GPS, "interop": IFD_INTEROP}
IFD_LABELS = {IFD_EXIF: "exif", IFD_GPS: "gps", IFD_INTEROP: "interop"}

# The IFDs that the merged mapping of a file covers, in the order in which a
# tag number found in several of them is resolved.
MAIN_IFDS = (0, IFD_EXIF, IFD_GPS)

_by_name = {}
_by_number = {}


def ifd_id(ifd):
    """The library's id of an IFD: 0, 1, 2... of the chain, or "exif", "gps",
    "interop" in any case, or one of the IFD_... ids."""
    if isinstance(ifd, str):
        found = _IFD_WORDS.get(ifd.lower())
        if found is not None:
            return found
        if ifd.isdigit():
            return int(ifd)
    elif isinstance(ifd, int) and (0 <= ifd < IFD_EXIF or ifd in IFD_LABELS):
        return ifd
    raise ArgumentError(ERROR_ARGUMENT, "no such IFD: %r" % (ifd,))


def find(name):
    """(IFD id, tag number, usual type) of a tag name, in any case; NotFound
    for a name the library doesn't know. The TIFF names come with IFD 0."""
    found = _by_name.get(name)
    if found is None:
        ifd, tag, type_ = ctypes.c_int(), ctypes.c_uint32(), ctypes.c_uint32()
        if not isinstance(name, str) or _library.load().c.zExifFindTag(
                name.encode("utf-8", "replace"), ifd, tag, type_) != 0:
            raise NotFound(ERROR_NOT_FOUND, "no tag is named %r" % (name,))
        found = _by_name[name] = (ifd.value, tag.value, type_.value)
    return found


def key_of(ifd, tag):
    """The key of a tag in a mapping: its name, or its number where the
    library knows no name for it in that IFD."""
    key = (ifd if ifd in IFD_LABELS else 0, tag)
    found = _by_number.get(key)
    if found is None:
        name = _library.load().c.zExifGetTagName(key[0], tag)
        found = _by_number[key] = name.decode("ascii") if name else tag
    return found
