"""The editable document of a file, through the library's read-write family."""

import ctypes
import os
from collections.abc import MutableMapping

from . import _library, _names, gps as _gps
from ._common import FORMATS, closed, failure, keyed, merged, source_of, tag_list
from .errors import ArgumentError, NotFound, ERROR_ARGUMENT, ERROR_NOT_FOUND
from .values import ASCII, BYTE, RATIONAL, TYPE_NAMES, encode

_GPS = _names.IFD_GPS
_GPS_VERSION = (2, 3, 0, 0)


class Document(MutableMapping):
    """A JPEG or TIFF file held whole, to be edited and saved.

    A mutable mapping of the tags of IFD 0, the Exif IFD and the GPS IFD,
    keyed like zexif.Metadata: ``doc["Artist"] = "Jane"`` writes the tag in
    the IFD the library's table gives the name, with the type the table
    gives it; ``del doc["Artist"]`` removes it. ``ifd()`` edits exactly one
    IFD, ``set()`` takes a type and an IFD of the caller's. Nothing reaches a
    file before ``save()``.
    """

    def __init__(self, source):
        lib = _library.load()
        path, data = source_of(source)
        self._lib = lib
        self._handle = None
        self._ifds = {}
        self.path = source if path is not None else None
        handle = lib.c.zExifLoadFile(path) if path is not None else lib.c.zExifLoadMemory(data, len(data))
        if not handle:
            raise failure(lib, self.path)
        self._handle = handle

    # -- life ---------------------------------------------------------------

    def close(self):
        """Drops the document and whatever edits were not saved; closing
        twice is harmless."""
        handle, self._handle = self._handle, None
        self._ifds.clear()
        if handle:
            self._lib.c.zExifDestroy(handle)

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __del__(self):
        if getattr(self, "_handle", None):
            self.close()

    @property
    def closed(self):
        return not self._handle

    def _live(self):
        if not self._handle:
            raise closed()
        return self._handle

    def _failed(self):
        return failure(self._lib, self.path, ctypes.get_errno())

    # -- reading ------------------------------------------------------------

    def _ifd_tags(self, ident):
        """The tags of one IFD by key, or None; read once between edits."""
        found = self._ifds.get(ident, False)
        if found is False:
            tags = tag_list(self._lib, self._lib.c.zExifGetTagList, self._live(), ident)
            found = self._ifds[ident] = None if tags is None else keyed(ident, tags)
        return found

    def _where(self, key):
        """(IFD id, key in that IFD) of a key of the merged mapping; None for
        a tag that isn't there."""
        if isinstance(key, str):
            ident = _names.find(key)[0]
            tags = self._ifd_tags(ident)
            name = _names.key_of(ident, _names.find(key)[1])
            return (ident, name) if tags is not None and name in tags else None
        for ident in _names.MAIN_IFDS:
            tags = self._ifd_tags(ident)
            if tags is not None and key in tags:
                return ident, key
        return None

    def _present(self, key):
        """Where _where finds the key; NotFound for a tag that isn't there."""
        try:
            where = self._where(key)
        except NotFound:
            where = None
        if where is None:
            raise NotFound(ERROR_NOT_FOUND, "no tag %r" % (key,), self.path)
        return where

    def __getitem__(self, key):
        where = self._present(key)
        return self._ifds[where[0]][where[1]]

    def __iter__(self):
        return iter(self.tags)

    def __len__(self):
        return len(self.tags)

    @property
    def tags(self):
        """Every tag of IFD 0, the Exif IFD and the GPS IFD as a read-only
        mapping, as it stands now."""
        return merged([self._ifd_tags(ident) or {} for ident in _names.MAIN_IFDS])

    def ifd(self, ifd):
        """Exactly one IFD as a mutable mapping: 0, 1, 2... of the chain,
        "exif", "gps" or "interop". It may be missing: a tag set in it makes
        it."""
        return IfdTags(self, _names.ifd_id(ifd))

    @property
    def format(self):
        """"jpeg" or "tiff"."""
        return FORMATS.get(self._lib.c.zExifGetFileFormat(self._live()))

    # -- editing ------------------------------------------------------------

    def _set_at(self, ident, tag, type_, value):
        count, raw = encode(value, type_)
        buffer = ctypes.create_string_buffer(raw, len(raw))
        record = _library.ExifTagValue(type_, count, ctypes.cast(buffer, _library.CHARS))
        handle = self._live()
        self._ifds.clear()
        if self._lib.c.zExifSetTagAt(handle, ident, tag, ctypes.byref(record)) != 0:
            raise self._failed()

    def _delete_at(self, ident, tag):
        handle = self._live()
        self._ifds.clear()
        if self._lib.c.zExifDelTagAt(handle, ident, tag) != 0:
            raise self._failed()

    def set(self, key, value, type=None, ifd=None):
        """Sets a tag by name or number. The IFD and the type default to the
        table's for a name; for a number, to the IFD and type of the tag
        already there (IFD 0, then Exif, then GPS). type is a TIFF type
        (zexif.values.SHORT, ...) or its name ("SHORT")."""
        ident = None if ifd is None else _names.ifd_id(ifd)
        tag, usual = _tag_and_type(key, ident)
        if ident is None and isinstance(key, str):
            ident = _names.find(key)[0]
        elif ident is None:
            ident = _existing_ifd(self, key)
        if type is None:
            type = usual if usual is not None else _existing_type(self, ident, tag)
        self._set_at(ident, tag, _type_code(type), value)

    def __setitem__(self, key, value):
        self.set(key, value)

    def __delitem__(self, key):
        ident = self._present(key)[0]
        self._delete_at(ident, _names.find(key)[1] if isinstance(key, str) else key)

    def set_gps(self, lat, lon, alt=None):
        """Writes a position in decimal degrees (negative to the south and
        west) and, where given, metres above sea level (negative below it).
        Without an altitude, one the file had is removed with its reference,
        so that the position never gets a stale height."""
        lat_ref, lat_parts = _gps.coordinate(lat, 90, "N", "S", "latitude")
        lon_ref, lon_parts = _gps.coordinate(lon, 180, "E", "W", "longitude")
        height = None if alt is None else _gps.altitude_parts(alt)
        gps = self._ifd_tags(_GPS) or {}
        if "GPSVersionID" not in gps:
            self._set_at(_GPS, 0, BYTE, _GPS_VERSION)
        self._set_at(_GPS, 1, ASCII, lat_ref)
        self._set_at(_GPS, 2, RATIONAL, lat_parts)
        self._set_at(_GPS, 3, ASCII, lon_ref)
        self._set_at(_GPS, 4, RATIONAL, lon_parts)
        if height is not None:
            self._set_at(_GPS, 5, BYTE, height[0])
            self._set_at(_GPS, 6, RATIONAL, [height[1]])
        else:
            for tag in (5, 6):
                if (_names.key_of(_GPS, tag)) in (self._ifd_tags(_GPS) or {}):
                    self._delete_at(_GPS, tag)

    @property
    def thumbnail(self):
        """The embedded thumbnail's bytes, or None. Set it to the bytes of a
        JPEG to embed that one."""
        out = _library.ExifBuffer()
        if self._lib.c.zExifGetThumbnailData(self._live(), ctypes.byref(out)) != 0:
            if self._lib.zExifGetLastError() != ERROR_NOT_FOUND:
                raise self._failed()
            return None
        try:
            return ctypes.string_at(out.data, out.size)
        finally:
            self._lib.c.zExifFreeBuffer(ctypes.byref(out))

    @thumbnail.setter
    def thumbnail(self, data):
        if not isinstance(data, (bytes, bytearray, memoryview)) or not len(data):
            raise ArgumentError(ERROR_ARGUMENT, "a thumbnail is the non-empty bytes of a JPEG")
        raw = bytes(data)
        buffer = _library.ExifBuffer(ctypes.cast(ctypes.c_char_p(raw), _library.CHARS), len(raw))
        handle = self._live()
        self._ifds.clear()
        if self._lib.c.zExifSetThumbnailData(handle, ctypes.byref(buffer)) != 0:
            raise self._failed()

    # -- saving -------------------------------------------------------------

    def save(self, path=None):
        """Writes the file through the library's safe save: a new file beside
        the target takes its place only once it is whole, so a failed save
        leaves the target as it was. In place by default. The document then
        holds the file written and goes on with it, like "save as": a later
        save() without a path writes there."""
        handle = self._live()
        target = self.path if path is None else path
        if target is None:
            raise ArgumentError(ERROR_ARGUMENT, "a document read from bytes needs a path to save to")
        encoded = os.fsencode(target)
        ctypes.set_errno(0)
        if self._lib.c.zExifSaveFile(handle, encoded) != 0:
            raise failure(self._lib, target, ctypes.get_errno())
        # A save closes the document's source: what was left on file is read
        # again from the file just written.
        self.close()
        reloaded = self._lib.c.zExifLoadFile(encoded)
        if not reloaded:
            raise failure(self._lib, target)
        self._handle = reloaded
        self._ifds.clear()
        self.path = target

    def to_bytes(self):
        """The whole file as it would be saved; the document stays as it is."""
        out = _library.ExifBuffer()
        if self._lib.c.zExifSaveMemory(self._live(), ctypes.byref(out)) != 0:
            raise self._failed()
        try:
            return ctypes.string_at(out.data, out.size)
        finally:
            self._lib.c.zExifFreeBuffer(ctypes.byref(out))

    def __repr__(self):
        state = "closed" if not self._handle else self.format
        return "<zexif.Document %r %s>" % (self.path if self.path is not None else "<bytes>", state)


class IfdTags(MutableMapping):
    """The tags of one IFD of a Document. A name known for another IFD is no
    key here; a tag with no name in this IFD is keyed by its number."""

    def __init__(self, document, ident):
        self._document = document
        self.id = ident

    def _tags(self):
        return self._document._ifd_tags(self.id) or {}

    def _number(self, key):
        if isinstance(key, str):
            ident, tag, _type = _names.find(key)
            if ident != (self.id if self.id in _names.IFD_LABELS else 0):
                raise NotFound(ERROR_NOT_FOUND, "%s is no tag of this IFD" % key)
            return tag
        if isinstance(key, int) and not isinstance(key, bool) and 0 <= key <= 0xFFFF:
            return key
        raise ArgumentError(ERROR_ARGUMENT, "a tag is a name or a number from 0 to 65535, not %r" % (key,))

    def __getitem__(self, key):
        tags = self._tags()
        try:
            name = _names.key_of(self.id, self._number(key))
        except NotFound:
            name = None
        if name not in tags:
            raise NotFound(ERROR_NOT_FOUND, "no tag %r" % (key,), self._document.path)
        return tags[name]

    def __iter__(self):
        return iter(dict(self._tags()))

    def __len__(self):
        return len(self._tags())

    def __setitem__(self, key, value):
        self._number(key)
        self._document.set(key, value, ifd=self.id)

    def __delitem__(self, key):
        self[key]
        self._document._delete_at(self.id, self._number(key))


def _type_code(type_):
    if isinstance(type_, str):
        for code, name in TYPE_NAMES.items():
            if name == type_.upper():
                return code
    elif type_ in TYPE_NAMES:
        return type_
    raise ArgumentError(ERROR_ARGUMENT, "no TIFF type %r" % (type_,))


def _tag_and_type(key, ident):
    """(number, usual type or None) of a key."""
    if isinstance(key, str):
        _ifd, tag, type_ = _names.find(key)
        return tag, type_
    if isinstance(key, int) and not isinstance(key, bool) and 0 <= key <= 0xFFFF:
        return key, None
    raise ArgumentError(ERROR_ARGUMENT, "a tag is a name or a number from 0 to 65535, not %r" % (key,))


def _existing_ifd(document, tag):
    for ident in _names.MAIN_IFDS:
        if tag in (document._ifd_tags(ident) or {}):
            return ident
    raise ArgumentError(ERROR_ARGUMENT, "tag %d is new: say its IFD and type" % tag)


def _existing_type(document, ident, tag):
    """The type of the tag already there, from the IFD's entries."""
    tags = tag_list(document._lib, document._lib.c.zExifGetTagList, document._live(), ident) or []
    for number, type_, _count, _value in tags:
        if number == tag:
            return type_
    raise ArgumentError(ERROR_ARGUMENT, "tag %d is new: say its type" % tag)
