#!/usr/bin/env python3
"""Writes a JPEG of about SIZE bytes: the segments of a real camera file up to
and including its SOS header, then entropy-coded data of the wanted length in
valid form (every FF stuffed, a restart marker every 4 KiB), then EOI.
Usage: make_big_jpeg.py SAMPLE.jpg SIZE OUT.jpg"""
import random
import struct
import sys


def head_through_sos(data):
    pos = 2
    while pos + 4 <= len(data):
        if data[pos] != 0xFF:
            raise SystemExit("no marker at %d" % pos)
        code = data[pos + 1]
        length = struct.unpack(">H", data[pos + 2:pos + 4])[0]
        pos += 2 + length
        if code == 0xDA:
            return data[:pos]
    raise SystemExit("no SOS")


def scan_data(size, seed):
    rng = random.Random(seed)
    out = bytearray()
    restart = 0
    while len(out) < size:
        out += rng.randbytes(4096).replace(b"\xff", b"\xff\x00")
        out += bytes((0xFF, 0xD0 + restart % 8))
        restart += 1
    return bytes(out)


def main():
    sample, size, target = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    head = head_through_sos(open(sample, "rb").read())
    with open(target, "wb") as out:
        out.write(head)
        out.write(scan_data(size - len(head) - 2, size))
        out.write(b"\xff\xd9")


main()
