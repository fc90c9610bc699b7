"""Every tag that `zexif dump --json` shows reads the same through the package."""

import json
import os
import subprocess
from fractions import Fraction

import pytest

import zexif
from conftest import TOOL, sample_params

LABELS = {"exif": "exif", "gps": "gps", "interop": "interop"}


def dumped_ifds(path):
    """{IFD label: [tag objects]} of the file's TIFF block, as the tool dumps it."""
    dump = json.loads(subprocess.run([TOOL, "dump", "--json", path], check=True, capture_output=True).stdout)[0]
    blocks = [dump["tiff"]] if "tiff" in dump else [m["tiff"] for m in dump["markers"] if "tiff" in m]
    ifds = {}

    def walk(ifd):
        ifds[ifd["ifd"]] = ifd["tags"]
        for tag in ifd["tags"]:
            if "subIfd" in tag:
                walk(tag["subIfd"])

    for block in blocks[-1:]:
        for ifd in block.get("ifds", []):
            walk(ifd)
    return ifds


def as_dumped(type_name, value):
    """A package value in the form the tool's JSON gives it."""
    if type_name == "ASCII" or type_name not in zexif.values.TYPE_NAMES.values():
        return value
    if type_name == "UNDEFINED":
        return value.hex()
    numbers = value if isinstance(value, tuple) else (value,)
    if type_name in ("RATIONAL", "SRATIONAL"):
        return [None if n is None else Fraction(n) for n in numbers]
    return list(numbers)


def from_dump(tag):
    value = tag["value"]
    if tag["type"] in ("RATIONAL", "SRATIONAL"):
        return [Fraction(n, d) if d else None for n, d in value]
    return value


@pytest.mark.skipif(not os.access(TOOL, os.X_OK), reason="build/zexif is not built")
@pytest.mark.parametrize("path", sample_params())
def test_every_dumped_tag_reads_the_same(path):
    ifds = dumped_ifds(path)
    with zexif.read(path) as meta, zexif.open(path) as doc:
        for label, tags in ifds.items():
            entries = meta.entries(label)
            assert [(t["tag"], t["type"], t["count"]) for t in tags] == \
                [(tag, zexif.values.TYPE_NAMES.get(type_, "?"), count) for tag, type_, count, _ in entries], label
            for dumped, (_tag, _type, _count, value) in zip(tags, entries):
                assert as_dumped(dumped["type"], value) == from_dump(dumped), (label, dumped["name"])
            first = {}
            for dumped, entry in zip(tags, entries):
                first.setdefault(dumped["name"] or dumped["tag"], entry[3])
            assert dict(meta.ifd(label)) == first == dict(doc.ifd(label)), label
        # The lazy lookups, the whole-IFD reading and the document agree.
        assert {key: meta[key] for key in meta.tags} == dict(meta.tags) == dict(doc.tags)
        assert len(meta) == sum(1 for _ in meta)
        gps = meta.gps
        # The tool reckons the signed degrees of RATIONAL coordinates.
        decimals = {t["name"]: t["decimal"] for t in ifds.get("gps", []) if t.get("decimal") is not None}
        if {"GPSLatitude", "GPSLongitude"} <= set(decimals):
            assert gps[:2] == pytest.approx((decimals["GPSLatitude"], decimals["GPSLongitude"]))
        orientation = [t["value"][0] for t in ifds.get("0", []) if t["tag"] == 274 and t["type"] == "SHORT"]
        assert meta.orientation == (orientation[0] if orientation and 1 <= orientation[0] <= 8 else None)
        thumbnail = meta.thumbnail
        assert thumbnail == doc.thumbnail
        if thumbnail is not None:
            assert thumbnail[:2] == b"\xff\xd8"
