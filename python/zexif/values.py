"""Tag values between the library's bytes and Python.

ASCII gives a str up to the first NUL (bytes that aren't ASCII or UTF-8 are
read as Latin-1); UNDEFINED gives bytes; the integer types give int;
RATIONAL and SRATIONAL give fractions.Fraction, or None for a denominator of
0, so that reading a value never raises; FLOAT and DOUBLE give float. A
count above 1 gives a tuple, a count of 0 an empty tuple. A type the library
doesn't know (outside 1 to 12) gives None.
"""

import struct
from fractions import Fraction
from numbers import Integral, Rational, Real

from .errors import ArgumentError, ERROR_ARGUMENT

BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED, SSHORT, SLONG, SRATIONAL, FLOAT, DOUBLE = range(1, 13)

TYPE_NAMES = {BYTE: "BYTE", ASCII: "ASCII", SHORT: "SHORT", LONG: "LONG", RATIONAL: "RATIONAL",
              SBYTE: "SBYTE", UNDEFINED: "UNDEFINED", SSHORT: "SSHORT", SLONG: "SLONG",
              SRATIONAL: "SRATIONAL", FLOAT: "FLOAT", DOUBLE: "DOUBLE"}

# Type: (bytes per value, struct code of one value in host order).
_LAYOUT = {BYTE: (1, "B"), SHORT: (2, "H"), LONG: (4, "I"), RATIONAL: (8, "I"), SBYTE: (1, "b"),
           SSHORT: (2, "h"), SLONG: (4, "i"), SRATIONAL: (8, "i"), FLOAT: (4, "f"), DOUBLE: (8, "d")}

_RANGES = {BYTE: (0, 0xFF), SHORT: (0, 0xFFFF), LONG: (0, 0xFFFFFFFF), SBYTE: (-0x80, 0x7F),
           SSHORT: (-0x8000, 0x7FFF), SLONG: (-0x80000000, 0x7FFFFFFF),
           RATIONAL: (0, 0xFFFFFFFF), SRATIONAL: (-0x80000000, 0x7FFFFFFF)}

_unpack = struct.unpack
_formats = {}


def number_format(type_, count):
    """The struct format of count values of a numeric type, in host order;
    a rational's numerator and denominator are two numbers."""
    key = (type_, count)
    found = _formats.get(key)
    if found is None:
        code = _LAYOUT[type_][1]
        found = _formats[key] = "=%d%s" % (count * 2 if type_ in (RATIONAL, SRATIONAL) else count, code)
    return found


def text(raw):
    """An ASCII value's bytes as str: up to the first NUL, as UTF-8 where
    they are that, else as Latin-1."""
    raw = raw.partition(b"\0")[0]
    try:
        return raw.decode("utf-8")
    except UnicodeDecodeError:
        return raw.decode("latin-1")


def _fraction(numerator, denominator):
    return Fraction(numerator, denominator) if denominator else None


def decode(type_, count, data):
    """The Python value of a tag whose bytes data points at (a ctypes char
    pointer)."""
    if type_ == ASCII:
        return text(data[:count]) if count and data else ""
    if type_ == UNDEFINED:
        return data[:count] if count and data else b""
    layout = _LAYOUT.get(type_)
    if layout is None or (count and not data):
        return None
    if count == 0:
        return ()
    if count == 1:
        if type_ == RATIONAL or type_ == SRATIONAL:
            numerator, denominator = _unpack(number_format(type_, 1), data[:8])
            return Fraction(numerator, denominator) if denominator else None
        return _unpack(number_format(type_, 1), data[:layout[0]])[0]
    numbers = _unpack(number_format(type_, count), data[:layout[0] * count])
    if type_ == RATIONAL or type_ == SRATIONAL:
        return tuple(map(_fraction, numbers[0::2], numbers[1::2]))
    return numbers


def _rational_parts(value, type_):
    if isinstance(value, tuple) and len(value) == 2 and all(isinstance(v, Integral) for v in value):
        return value
    if isinstance(value, Rational):
        return value.numerator, value.denominator
    if isinstance(value, Real):
        low, high = _RANGES[type_]
        fraction = Fraction(value).limit_denominator(high)
        while not (low <= fraction.numerator <= high):
            fraction = fraction.limit_denominator(max(1, fraction.denominator // 2))
            if fraction.denominator == 1:
                break
        return fraction.numerator, fraction.denominator
    raise TypeError


def _check_range(numbers, type_):
    low, high = _RANGES[type_]
    for number in numbers:
        if not (low <= number <= high):
            raise ArgumentError(ERROR_ARGUMENT, "%d does not fit a %s value" % (number, TYPE_NAMES[type_]))


def encode(value, type_):
    """(count, bytes) of a Python value as a value of the TIFF type.

    ASCII takes str (written as UTF-8) or bytes, and gets its NUL; UNDEFINED
    takes bytes, or str written as UTF-8 ("0231" for ExifVersion); the numeric types take one number or a sequence of them; a
    rational also takes a (numerator, denominator) pair of ints, a Fraction
    or a float (made the nearest fraction that fits).
    """
    try:
        if type_ == ASCII:
            raw = value.encode("utf-8") if isinstance(value, str) else bytes(value)
            if b"\0" in raw:
                raise ArgumentError(ERROR_ARGUMENT, "an ASCII value can't hold a NUL")
            return len(raw) + 1, raw + b"\0"
        if type_ == UNDEFINED:
            if isinstance(value, str):
                value = value.encode("utf-8")
            if not isinstance(value, (bytes, bytearray, memoryview)):
                raise TypeError
            raw = bytes(value)
            return len(raw), raw
        if type_ not in _LAYOUT:
            raise ArgumentError(ERROR_ARGUMENT, "unknown TIFF type %r" % (type_,))
        rational = type_ in (RATIONAL, SRATIONAL)
        single = isinstance(value, (Real, Fraction)) or (rational and isinstance(value, tuple) and len(value) == 2
                                                          and all(isinstance(v, Integral) for v in value))
        items = [value] if single else list(value)
        if not items:
            raise ArgumentError(ERROR_ARGUMENT, "a value needs at least one number")
        if rational:
            numbers = [int(part) for item in items for part in _rational_parts(item, type_)]
        elif type_ in (FLOAT, DOUBLE):
            numbers = [float(item) for item in items]
        else:
            if not all(isinstance(item, Integral) for item in items):
                raise TypeError
            numbers = [int(item) for item in items]
        if type_ in _RANGES:
            _check_range(numbers, type_)
        return len(items), struct.pack(number_format(type_, len(items)), *numbers)
    except TypeError:
        raise ArgumentError(ERROR_ARGUMENT, "%r is no value for a %s tag"
                            % (value, TYPE_NAMES.get(type_, type_))) from None
