"""The exceptions of the package: one class per error code of the library.

Every error carries the library's ``code`` and ``text``; the classes also
derive from the built-in exception a Python user would catch for the same
trouble (a missing tag is a KeyError, an unopenable file an OSError, ...).
"""

ERROR_ARGUMENT = 1
ERROR_OPEN = 2
ERROR_FORMAT = 3
ERROR_DAMAGED = 4
ERROR_NOT_FOUND = 5
ERROR_MEMORY = 6
ERROR_LIMIT = 7
ERROR_WRITE = 8
ERROR_ACCESS = 9
ERROR_READ = 10


class Error(Exception):
    """A failure of the library, or of what the package asked of it.

    ``code`` is the library's error code (``ERROR_...``, 0 where none
    applies), ``text`` its one line of English, ``filename`` the file
    concerned or None.
    """

    def __init__(self, code, text, filename=None):
        Exception.__init__(self, code, text)
        self.code = code
        self.text = text
        self.filename = filename

    def __str__(self):
        if self.filename is None:
            return self.text
        return "%s: %s" % (self.filename, self.text)

    def __reduce__(self):
        return (type(self), (self.code, self.text, self.filename))


class ArgumentError(Error, ValueError):
    """A value, key or call the library or the package can't take, or a
    handle that is closed."""


class NotFound(Error, KeyError):
    """No such tag, IFD or thumbnail."""


class FormatError(Error, ValueError):
    """Not a JPEG or TIFF file, or a call for the other format."""


class DamagedError(FormatError):
    """The file's structure can't be read."""


class LimitError(Error, ValueError):
    """Past one of the library's bounds: file size, value size, segment size."""


class OutOfMemory(Error, MemoryError):
    """The library ran out of memory."""


class _SystemError(Error, OSError):
    """A failure where the system may have had a say: ``errno`` is the
    system's reason when one is known, else None."""

    def __init__(self, code, text, filename=None, errno=None):
        Error.__init__(self, code, text, filename)
        self.errno = errno or None
        self.strerror = text

    def __str__(self):
        return Error.__str__(self)

    def __reduce__(self):
        return (type(self), (self.code, self.text, self.filename, self.errno))


class OpenError(_SystemError):
    """A file can't be opened or created."""


class AccessError(OpenError, PermissionError):
    """The system refused access to a file."""


class WriteError(_SystemError):
    """Writing a file failed; the disk may be full."""


class ReadError(_SystemError):
    """A file that opened can't be read as it was."""


class LibraryNotFound(Error, ImportError):
    """libzexif.so could not be loaded; ``tried`` lists every place tried."""

    def __init__(self, tried):
        text = "libzexif.so not found; tried: " + "; ".join(tried)
        Error.__init__(self, 0, text)
        ImportError.__init__(self, text)
        self.tried = list(tried)

    def __str__(self):
        return self.text

    def __reduce__(self):
        return (type(self), (self.tried,))


_BY_CODE = {
    ERROR_ARGUMENT: ArgumentError,
    ERROR_OPEN: OpenError,
    ERROR_FORMAT: FormatError,
    ERROR_DAMAGED: DamagedError,
    ERROR_NOT_FOUND: NotFound,
    ERROR_MEMORY: OutOfMemory,
    ERROR_LIMIT: LimitError,
    ERROR_WRITE: WriteError,
    ERROR_ACCESS: AccessError,
    ERROR_READ: ReadError,
}


def error_for(code, text, filename=None, errno=None):
    """The exception for a library error code."""
    cls = _BY_CODE.get(code, Error)
    if issubclass(cls, _SystemError):
        return cls(code, text, filename, errno)
    return cls(code, text, filename)
