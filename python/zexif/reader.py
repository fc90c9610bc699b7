"""The read-only view of a file, through the library's reader."""

import ctypes
import datetime as _datetime
import struct
import sys
from fractions import Fraction as _Fraction
from collections.abc import Mapping

from . import _library, _names, gps as _gps
from ._common import FORMATS, closed, failure, keyed, merged, source_of, tag_list
from .errors import ERROR_NOT_FOUND, NotFound
from .values import RATIONAL, SRATIONAL, decode, number_format

_MISSING = object()
_EXIF, _GPS = _names.IFD_EXIF, _names.IFD_GPS
# os.fsencode, without its calls.
_FS_ENCODING, _FS_ERRORS = sys.getfilesystemencoding(), sys.getfilesystemencodeerrors()
# The library's functions of the common path, bound on first use.
_lib = _begin_read = _end_read = _tag_at = _tags_at = _last_error = None
_byref = ctypes.byref
_Value = _library.ExifTagValue

# The tags most callers want, with those that gps, orientation and
# datetime_original read: a view fetches them all in one call at its first
# lookup of one of them, a call's cost being much more than a tag's. They go
# by IFD, as the library walks to an IFD once for a run of its tags.
_COMMON = ((0, 271), (0, 272), (0, 274), (0, 306), (0, 315), (0, 33432),
           (_EXIF, 33434), (_EXIF, 33437), (_EXIF, 34855), (_EXIF, 36867), (_EXIF, 36868), (_EXIF, 36881),
           (_EXIF, 37386), (_EXIF, 37521), (_EXIF, 42036)) + tuple((_GPS, tag) for tag in range(7))
_SLOT = {key: index for index, key in enumerate(_COMMON)}
_COUNT = len(_COMMON)
_KEYS = (_library.ExifTagKey * _COUNT)(*_COMMON)
_COMMON_VALUES = _Value * _COUNT
_LATITUDE, _LONGITUDE, _ALTITUDE = _SLOT[_GPS, 2], _SLOT[_GPS, 4], _SLOT[_GPS, 6]
# (IFD id, tag number, index in _COMMON or None) of the names asked for so far.
_places = {}
_unpack = struct.unpack


def _bind():
    global _lib, _begin_read, _end_read, _tag_at, _tags_at, _last_error
    _lib = _library.load()
    _end_read, _tag_at, _last_error = _lib.zRExifEndRead, _lib.zRExifGetTagAt, _lib.zExifGetLastError
    _tags_at = _lib.zRExifGetTagsAt
    _begin_read = _lib.zRExifBeginRead


class Metadata(Mapping):
    """The Exif, GPS and thumbnail of one JPEG or TIFF file, read on demand.

    The view is a read-only mapping of the tags of IFD 0, the Exif IFD and the
    GPS IFD: ``meta["Make"]``, ``meta.get("GPSLatitude")``. Keys are the
    library's tag names, in any case for a lookup; each name belongs to one
    IFD (the TIFF names to IFD 0 here), so a name never means two tags. A tag
    the library has no name for in its IFD is keyed by its number; a number
    found in more than one of the three IFDs resolves to IFD 0 first, then
    the Exif IFD, then the GPS IFD. Every IFD is at hand through ``ifd()``:
    ``meta.ifd(1)["XResolution"]``, ``meta.ifd("interop")``.

    Values are Python values (see zexif.values), read when asked for. Close
    the view, or use it as a context manager; a view that is collected is
    closed too.
    """

    __slots__ = ("_handle", "_keep", "_common", "path", "__weakref__")

    def __init__(self, source):
        self._handle = self._common = None
        if _begin_read is None:
            _bind()
        if source.__class__ is str:
            self.path = source
            self._keep = None
            handle = _begin_read(source.encode(_FS_ENCODING, _FS_ERRORS))
        else:
            path, data = source_of(source)
            self.path = source if path is not None else None
            # The reader reads the caller's bytes, which must outlive it.
            self._keep = data
            handle = _begin_read(path) if path is not None else _lib.c.zRExifBeginReadMemory(data, len(data))
        if not handle:
            raise failure(_lib, self.path)
        self._handle = handle

    # -- life ---------------------------------------------------------------

    def close(self):
        """Ends the reader; closing twice is harmless."""
        handle = self._handle
        if handle:
            self._handle = self._common = None
            _end_read(handle)
        self._keep = None

    def __enter__(self):
        return self

    def __exit__(self, kind, problem, trace):
        handle = self._handle
        if handle:
            self._handle = self._common = None
            _end_read(handle)

    def __del__(self):
        handle = getattr(self, "_handle", None)
        if handle:
            self._handle = None
            _end_read(handle)

    @property
    def closed(self):
        return not self._handle

    # -- single tags --------------------------------------------------------

    def _missing(self, default):
        """What a failed lookup gives: the default for a tag that isn't
        there, an exception for anything else."""
        if not self._handle:
            raise closed()
        if _last_error() != ERROR_NOT_FOUND:
            raise failure(_lib, self.path)
        return default

    def _fetch_common(self):
        """The values of _COMMON. They point into the reader, so a view
        drops them when it ends the reader."""
        if not self._handle:
            raise closed()
        values = _COMMON_VALUES()
        if _tags_at(self._handle, _KEYS, _COUNT, values) < 0:
            raise failure(_lib, self.path)
        self._common = values
        return values

    def _single(self, ifd, tag):
        """The library's value of a tag outside _COMMON, undecoded; None where
        the file has no such tag."""
        value = _Value()
        if _tag_at(self._handle, ifd, tag, _byref(value)):
            return self._missing(None)
        return value

    def _raw(self, ifd, tag):
        """The library's value of a tag, undecoded; None where the file has
        no such tag."""
        slot = _SLOT.get((ifd, tag))
        if slot is None:
            return self._single(ifd, tag)
        values = self._common
        value = (values if values is not None else self._fetch_common())[slot]
        # A tag that isn't there comes as {0, 0, NULL}.
        return value if value.type or value.count else None

    def _at(self, ifd, tag, default):
        value = self._raw(ifd, tag)
        return default if value is None else decode(value.type, value.count, value.data)

    def _number(self, tag, default):
        """A tag by number: the first of IFD 0, Exif, GPS where it has no name."""
        if tag.__class__ is not int or not 0 <= tag <= 0xFFFF:
            return default
        for ifd in _names.MAIN_IFDS:
            if _names.key_of(ifd, tag) == tag:
                value = self._at(ifd, tag, _MISSING)
                if value is not _MISSING:
                    return value
        return default

    def get(self, key, default=None):
        # The common path of the package: _raw and the common types decoded
        # here rather than in calls of their own.
        try:
            ifd, tag, slot = _places[key]
        except KeyError:
            if key.__class__ is not str:
                return self._number(key, default)
            try:
                ifd, tag = _names.find(key)[:2]
            except NotFound:
                return default
            slot = _SLOT.get((ifd, tag))
            _places[key] = ifd, tag, slot
        if slot is None:
            value = self._single(ifd, tag)
            if value is None:
                return default
            type_ = value.type
        else:
            values = self._common
            value = (values if values is not None else self._fetch_common())[slot]
            type_ = value.type
            if not type_ and not value.count:
                return default
        if type_ == 2:
            raw = value.data[:value.count].partition(b"\0")[0]
            try:
                return raw.decode()
            except UnicodeDecodeError:
                return raw.decode("latin-1")
        count = value.count
        if count == 1:
            if type_ == 3:
                return _unpack("=H", value.data[:2])[0]
            if type_ == 5:
                numerator, denominator = _unpack("=II", value.data[:8])
                return _Fraction(numerator, denominator) if denominator else None
        return decode(type_, count, value.data)

    def __getitem__(self, key):
        value = self.get(key, _MISSING)
        if value is _MISSING:
            raise NotFound(ERROR_NOT_FOUND, "no tag %r" % (key,), self.path)
        return value

    def __contains__(self, key):
        return self.get(key, _MISSING) is not _MISSING

    def __iter__(self):
        return iter(self.tags)

    def __len__(self):
        return len(self.tags)

    # -- whole IFDs ---------------------------------------------------------

    def _list(self, ifd):
        if not self._handle:
            raise closed()
        return tag_list(_lib, _lib.c.zRExifGetTagList, self._handle, ifd)

    def ifd(self, ifd):
        """The tags of exactly one IFD as a read-only mapping: 0, 1, 2... of
        the chain, "exif", "gps" or "interop". NotFound where the file has no
        such IFD."""
        ident = _names.ifd_id(ifd)
        tags = self._list(ident)
        if tags is None:
            raise NotFound(ERROR_NOT_FOUND, "no IFD %r" % (ifd,), self.path)
        return merged([keyed(ident, tags)])

    def entries(self, ifd):
        """The tags of exactly one IFD in entry order, duplicates included:
        a list of (tag number, TIFF type, count, value); [] for a missing IFD."""
        return self._list(_names.ifd_id(ifd)) or []

    @property
    def tags(self):
        """Every tag of IFD 0, the Exif IFD and the GPS IFD, read at once, as
        a read-only mapping keyed like the view."""
        return merged([keyed(ifd, self._list(ifd) or []) for ifd in _names.MAIN_IFDS])

    # -- what most callers want ---------------------------------------------

    @property
    def format(self):
        """"jpeg" or "tiff"."""
        if not self._handle:
            raise closed()
        return FORMATS.get(_lib.c.zRExifGetFileFormat(self._handle))

    @property
    def thumbnail(self):
        """The embedded thumbnail's bytes, or None."""
        if not self._handle:
            raise closed()
        out = _library.ExifBuffer()
        if _lib.c.zRExifGetThumbnailData(self._handle, ctypes.byref(out)) != 0:
            if _last_error() != ERROR_NOT_FOUND:
                raise failure(_lib, self.path)
            return None
        return out.data[:out.size]

    @property
    def orientation(self):
        """The Orientation of IFD 0, 1 to 8, or None where it's missing or
        none of those."""
        value = self._at(0, 274, None)
        return value if value.__class__ is int and 1 <= value <= 8 else None

    @property
    def datetime_original(self):
        """DateTimeOriginal as a datetime, with SubSecTimeOriginal's fraction
        and OffsetTimeOriginal's zone where the file has them; None where it's
        missing or no valid date."""
        return _parse_datetime(self.get("DateTimeOriginal"), self.get("SubSecTimeOriginal"),
                               self.get("OffsetTimeOriginal"))

    @property
    def gps(self):
        """(latitude, longitude, altitude): decimal degrees, negative to the
        south and west, and metres above sea level, negative below it; the
        altitude None where the file has none. None where the file has no
        usable latitude and longitude."""
        values = self._common
        if values is None:
            values = self._fetch_common()
        latitude = _rationals(values[_LATITUDE])
        if latitude is None:
            return None
        longitude = _rationals(values[_LONGITUDE])
        if longitude is None:
            return None
        lat = _gps.degrees(latitude, self.get("GPSLatitudeRef"))
        lon = _gps.degrees(longitude, self.get("GPSLongitudeRef"))
        if lat is None or lon is None:
            return None
        height = _rationals(values[_ALTITUDE])
        alt = None
        if height is not None:
            reference = self.get("GPSAltitudeRef")
            if isinstance(reference, tuple):
                reference = reference[0] if reference else None
            alt = _gps.altitude(height[:2], reference)
        return lat, lon, alt

    def __repr__(self):
        state = "closed" if not self._handle else self.format
        return "<zexif.Metadata %r %s>" % (self.path if self.path is not None else "<bytes>", state)


def _rationals(value):
    """The numbers of a RATIONAL or SRATIONAL value, each numerator followed
    by its denominator; None for a value of another type or none. Some
    cameras write the GPS coordinates as SRATIONAL."""
    type_, count = value.type, value.count
    if (type_ != RATIONAL and type_ != SRATIONAL) or not count or not value.data:
        return None
    return _unpack(number_format(type_, count), value.data[:8 * count])


def _parse_datetime(text, subsec, offset):
    if text.__class__ is not str or len(text) < 19:
        return None
    try:
        moment = _datetime.datetime(int(text[0:4]), int(text[5:7]), int(text[8:10]),
                                    int(text[11:13]), int(text[14:16]), int(text[17:19]))
    except ValueError:
        return None
    if isinstance(subsec, str) and subsec.strip().isdigit():
        digits = subsec.strip()[:6].ljust(6, "0")
        moment = moment.replace(microsecond=int(digits))
    if isinstance(offset, str) and len(offset) >= 6 and offset[0] in "+-":
        try:
            minutes = int(offset[1:3]) * 60 + int(offset[4:6])
            zone = _datetime.timezone(_datetime.timedelta(minutes=-minutes if offset[0] == "-" else minutes))
            moment = moment.replace(tzinfo=zone)
        except ValueError:
            pass
    return moment
