"""GPS positions between decimal degrees and the GPS IFD's rationals."""

import math
from fractions import Fraction

from .errors import ArgumentError, ERROR_ARGUMENT

# The seconds of a coordinate are written in ten-thousandths: 3 mm on the
# ground, well below what a camera's receiver knows.
SECONDS_DENOMINATOR = 10000
ALTITUDE_DENOMINATOR = 1000


def degrees(numbers, reference):
    """Decimal degrees of up to three rationals of degrees, minutes and
    seconds, each numerator followed by its denominator, negative for an "S"
    or "W" reference; None where a part has a denominator of 0 or there is no
    part."""
    if len(numbers) < 2:
        return None
    total = 0.0
    scale = 1.0
    for numerator, denominator in zip(numbers[0:6:2], numbers[1:6:2]):
        if not denominator:
            return None
        total += numerator / denominator / scale
        scale *= 60.0
    return -total if reference in ("S", "W") else total


def altitude(part, reference):
    """Metres above sea level of a (numerator, denominator) pair; below it
    where the reference byte is 1."""
    numerator, denominator = part
    if not denominator:
        return None
    metres = numerator / denominator
    return -metres if reference == 1 else metres


def coordinate(value, limit, positive, negative, what):
    """(reference, three (numerator, denominator) pairs) of decimal degrees."""
    if not isinstance(value, (int, float, Fraction)) or not math.isfinite(value) or abs(value) > limit:
        raise ArgumentError(ERROR_ARGUMENT, "%s must be a number from -%d to %d, not %r" % (what, limit, limit, value))
    reference = negative if value < 0 else positive
    seconds = round(abs(Fraction(value)) * 3600 * SECONDS_DENOMINATOR)
    whole, rest = divmod(seconds, 3600 * SECONDS_DENOMINATOR)
    minutes, rest = divmod(rest, 60 * SECONDS_DENOMINATOR)
    return reference, ((whole, 1), (minutes, 1), (rest, SECONDS_DENOMINATOR))


def altitude_parts(metres):
    """(reference byte, (numerator, denominator)) of metres above sea level."""
    if not isinstance(metres, (int, float, Fraction)) or not math.isfinite(metres) \
            or abs(metres) * ALTITUDE_DENOMINATOR > 0xFFFFFFFF:
        raise ArgumentError(ERROR_ARGUMENT, "altitude must be a number of metres, not %r" % (metres,))
    return (1 if metres < 0 else 0), (round(abs(Fraction(metres)) * ALTITUDE_DENOMINATOR), ALTITUDE_DENOMINATOR)
