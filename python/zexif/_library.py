"""Finding libzexif.so and declaring the C functions the package calls."""

import ctypes
import ctypes.util
import os
import threading

from .errors import LibraryNotFound


# Value bytes are reached through a char pointer: slicing one copies the bytes
# into a bytes object several times faster than ctypes.string_at.
CHARS = _bytes = ctypes.POINTER(ctypes.c_char)


class ExifTagValue(ctypes.Structure):
    _fields_ = [("type", ctypes.c_uint32), ("count", ctypes.c_uint32), ("data", _bytes)]


class ExifTagKey(ctypes.Structure):
    _fields_ = [("ifd", ctypes.c_int32), ("tag", ctypes.c_uint32)]


class ExifBuffer(ctypes.Structure):
    _fields_ = [("data", _bytes), ("size", ctypes.c_uint32)]


class TifTagItem(ctypes.Structure):
    _fields_ = [("tag", ctypes.c_uint32), ("type", ctypes.c_uint32), ("count", ctypes.c_uint32),
                ("data", _bytes)]


class TifTagList(ctypes.Structure):
    _fields_ = [("count", ctypes.c_int32), ("items", ctypes.POINTER(ctypes.POINTER(TifTagItem)))]


class Handle(ctypes.c_void_p):
    """A handle of the library. As a subclass of c_void_p it stays a ctypes
    object when a call returns it, so it goes back into calls that have no
    argument types as it is."""


_handle = Handle
_int = ctypes.c_int
_u32 = ctypes.c_uint32
_value = ctypes.POINTER(ExifTagValue)
_buffer = ctypes.POINTER(ExifBuffer)
_list_out = ctypes.POINTER(ctypes.POINTER(TifTagList))

# name: (result type, argument types).
_PROTOTYPES = {
    "zExifGetVersion": (ctypes.c_char_p, []),
    "zExifGetLastError": (_int, []),
    "zExifGetErrorText": (ctypes.c_char_p, [_int]),
    "zExifGetTagName": (ctypes.c_char_p, [_int, _u32]),
    "zExifFindTag": (_int, [ctypes.c_char_p, ctypes.POINTER(_int), ctypes.POINTER(_u32), ctypes.POINTER(_u32)]),
    "zExifFreeTagList": (None, [ctypes.POINTER(TifTagList)]),
    "zExifFreeBuffer": (None, [_buffer]),
    "zRExifBeginRead": (_handle, [ctypes.c_char_p]),
    "zRExifBeginReadMemory": (_handle, [ctypes.c_void_p, _u32]),
    "zRExifEndRead": (None, [_handle]),
    "zRExifGetFileFormat": (_int, [_handle]),
    "zRExifGetTagAt": (_int, [_handle, _int, _u32, _value]),
    "zRExifGetTagsAt": (_int, [_handle, ctypes.POINTER(ExifTagKey), ctypes.c_int32, _value]),
    "zRExifGetTagList": (_int, [_handle, _int, _list_out]),
    "zRExifIsThumbnailExist": (_int, [_handle]),
    "zRExifGetThumbnailData": (_int, [_handle, _buffer]),
    "zExifLoadFile": (_handle, [ctypes.c_char_p]),
    "zExifLoadMemory": (_handle, [ctypes.c_void_p, _u32]),
    "zExifDestroy": (None, [_handle]),
    "zExifGetFileFormat": (_int, [_handle]),
    "zExifSaveFile": (_int, [_handle, ctypes.c_char_p]),
    "zExifSaveMemory": (_int, [_handle, _buffer]),
    "zExifGetTagList": (_int, [_handle, _int, _list_out]),
    "zExifSetTagAt": (_int, [_handle, _int, _u32, _value]),
    "zExifDelTagAt": (_int, [_handle, _int, _u32]),
    "zExifIsThumbnailExist": (_int, [_handle]),
    "zExifGetThumbnailData": (_int, [_handle, _buffer]),
    "zExifSetThumbnailData": (_int, [_handle, _buffer]),
}

# The calls of the reader's common path go without argument types, whose
# conversions cost more than the calls; the tag lookups hold the GIL, as even
# a batch of them takes no longer than giving the GIL up and taking it back,
# and so does the end of a reader; the open reads the file and lets other
# threads run.
_FAST = {"zRExifBeginRead": Handle}
_FAST_HOLDING_GIL = {"zRExifEndRead": None, "zRExifGetTagAt": _int, "zRExifGetTagsAt": _int,
                     "zExifGetLastError": _int}


class Library:
    """The loaded library: every function with its prototype, and fast
    entries for the reader's common path."""

    def __init__(self, path):
        self.path = path
        self.c = ctypes.CDLL(path, use_errno=True)
        for name, (result, arguments) in _PROTOTYPES.items():
            function = getattr(self.c, name)
            function.restype = result
            function.argtypes = arguments
        fast = ctypes.CDLL(path)
        holding = ctypes.PyDLL(path)
        for names, lib in ((_FAST, fast), (_FAST_HOLDING_GIL, holding)):
            for name, result in names.items():
                function = getattr(lib, name)
                function.restype = result
                setattr(self, name, function)

_lock = threading.Lock()
_loaded = None


def _candidates():
    """Where the library is looked for, in order: (what to say, what to load)."""
    places = []
    named = os.environ.get("ZEXIF_LIBRARY")
    if named:
        places.append(("ZEXIF_LIBRARY=" + named, named))
    own = os.path.join(os.path.dirname(os.path.abspath(__file__)), "libzexif.so")
    places.append(("the package folder: " + own, own))
    found = ctypes.util.find_library("zexif")
    if found:
        places.append(("the system's library path: " + found, found))
    places.append(("the system's library path: libzexif.so", "libzexif.so"))
    return places


def load():
    """The loaded library; it is looked for on first use, so that importing
    the package never fails and LibraryNotFound can be caught like any error."""
    global _loaded
    if _loaded is not None:
        return _loaded
    with _lock:
        if _loaded is None:
            tried = []
            for said, target in _candidates():
                if said.startswith("the package folder") and not os.path.exists(target):
                    tried.append(said + " (no such file)")
                    continue
                try:
                    _loaded = Library(target)
                    break
                except (OSError, AttributeError) as problem:
                    tried.append("%s (%s)" % (said, problem))
            else:
                raise LibraryNotFound(tried)
    return _loaded
