"""zexif: read and edit the Exif, GPS and thumbnail of JPEG and TIFF files
through libzexif.so.

    import zexif

    with zexif.read("photo.jpg") as meta:
        print(meta["Make"], meta.get("ExposureTime"), meta.gps)

    with zexif.open("photo.jpg") as doc:
        doc["Artist"] = "Jane Doe"
        doc.set_gps(48.8583, 2.2945, alt=35.0)
        doc.save()

The library is looked for on first use: the file named by the environment
variable ZEXIF_LIBRARY, then libzexif.so in this package's folder, then the
system's library path.
"""

from . import values
from ._names import IFD_EXIF, IFD_GPS, IFD_INTEROP
from .document import Document, IfdTags
from .errors import (AccessError, ArgumentError, DamagedError, Error, FormatError, LibraryNotFound, LimitError,
                     NotFound, OpenError, OutOfMemory, ReadError, WriteError)
from .reader import Metadata

__version__ = "0.2.0"

__all__ = ["read", "open", "library_version", "Metadata", "Document", "IfdTags", "values", "IFD_EXIF", "IFD_GPS",
           "IFD_INTEROP", "Error", "ArgumentError", "NotFound", "FormatError", "DamagedError", "LimitError",
           "OutOfMemory", "OpenError", "AccessError", "WriteError", "ReadError", "LibraryNotFound"]


def read(source):
    """A read-only view of a file, from its path or its bytes: cheap to make,
    each tag read when first asked for. See Metadata."""
    return Metadata(source)


def open(source):
    """The editable document of a file, from its path or its bytes. See
    Document."""
    return Document(source)


def library_version():
    """The version of the libzexif.so that runs."""
    from . import _library
    return _library.load().c.zExifGetVersion().decode("ascii")
