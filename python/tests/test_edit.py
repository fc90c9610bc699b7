"""Edits through the document round-trip through a save and the reader."""

import os
import shutil
import subprocess
from fractions import Fraction

import pytest

import zexif
from conftest import SAMPLES, picture, sample_files

# (IFD or None for the table's, key, value written, value read back)
EDITS = [
    (None, "Artist", "Jane Doe", "Jane Doe"),
    (None, "ImageDescription", "Zürich \xe9t\xe9", "Zürich \xe9t\xe9"),
    (None, "Orientation", 6, 6),
    (None, "ExposureTime", Fraction(1, 250), Fraction(1, 250)),
    (None, "FNumber", 2.8, Fraction(14, 5)),
    (None, "ExposureBiasValue", (-2, 3), Fraction(-2, 3)),
    (None, "BitsPerSample", (8, 8, 8), (8, 8, 8)),
    (None, "UserComment", b"ASCII\0\0\0hello", b"ASCII\0\0\0hello"),
    (None, "ExifVersion", "0231", b"0231"),
    (None, "ISOSpeedRatings", 400, 400),
    (None, "GPSAltitudeRef", 1, 1),
    (1, "XResolution", 300, Fraction(300)),  # a TIFF gets no new chain IFD: JPEG only
    ("interop", "InteroperabilityIndex", "R98", "R98"),
]


def edits(path):
    return [edit for edit in EDITS if edit[0] != 1 or path.endswith(".jpg")]


def sources(tmp_path):
    made = {"made.jpg": picture("JPEG"), "made.tiff": picture("TIFF")}
    real = [p for p in sample_files() if p.endswith(("Canon_40D.jpg", "BSG1.tiff"))]
    paths = []
    for name, data in made.items():
        (tmp_path / name).write_bytes(data)
        paths.append(str(tmp_path / name))
    for path in real:
        paths.append(shutil.copy(path, tmp_path))
    return paths


def test_edits_round_trip(tmp_path):
    for path in sources(tmp_path):
        with zexif.open(path) as doc:
            for ifd, key, value, _ in edits(path):
                (doc if ifd is None else doc.ifd(ifd))[key] = value
            doc.set(0xC000, (1, 2), type="SSHORT", ifd="exif")
            doc.save()
            # The document goes on with the file saved: a second edit and save.
            del doc["Artist"]
            doc["Software"] = "zexif"
            doc.save()
        with zexif.read(path) as meta:
            for ifd, key, _, expected in edits(path)[1:]:
                assert (meta if ifd is None else meta.ifd(ifd))[key] == expected, (path, key)
            assert meta.ifd("exif")[0xC000] == (1, 2)
            assert meta[0xC000] == (1, 2) and "Artist" not in meta and meta["Software"] == "zexif"
            assert meta.orientation == 6


@pytest.mark.parametrize("position", [(48.8583, 2.2945, 35.0), (-33.85678, -151.21529, -12.5), (0.0, 0.0, None)])
def test_gps_round_trips(tmp_path, position):
    path = str(tmp_path / "gps.jpg")
    with zexif.open(picture()) as doc:
        doc.set_gps(10.0, 20.0, 999.0)
        doc.set_gps(*position)
        doc.save(path)
    with zexif.read(path) as meta:
        assert meta.gps == pytest.approx(position) if position[2] is not None else \
            (meta.gps[:2] == pytest.approx(position[:2]) and meta.gps[2] is None)
        assert meta["GPSVersionID"] == (2, 3, 0, 0)
    if shutil.which("exiftool"):
        shown = subprocess.run(["exiftool", "-n", "-s3", "-GPSLatitude#", "-GPSLongitude#", path],
                               capture_output=True, text=True, check=True).stdout.split()
        assert [abs(float(v)) for v in shown] == pytest.approx([abs(position[0]), abs(position[1])], abs=1e-6)


def test_thumbnail_bytes_and_save_as(tmp_path):
    thumbnail = picture()
    with zexif.open(picture()) as doc:
        assert doc.thumbnail is None
        doc["Make"] = "zexif"
        doc.thumbnail = thumbnail
        data = doc.to_bytes()
        with pytest.raises(zexif.ArgumentError):
            doc.save()
        doc.save(str(tmp_path / "out.jpg"))
        assert doc.path == str(tmp_path / "out.jpg") and doc.thumbnail == thumbnail
    for source in (data, str(tmp_path / "out.jpg")):
        with zexif.read(source) as meta:
            assert meta.thumbnail == thumbnail and meta["Make"] == "zexif" and meta.format == "jpeg"


@pytest.mark.parametrize("key, value, error", [
    ("Orientation", 70000, zexif.ArgumentError),
    ("Orientation", "six", zexif.ArgumentError),
    ("Orientation", [], zexif.ArgumentError),
    ("Artist", "a\0b", zexif.ArgumentError),
    ("ExposureTime", -1.5, zexif.ArgumentError),
    ("UserComment", 5, zexif.ArgumentError),
    ("NoSuchTag", 1, zexif.NotFound),
    (0x9999, 1, zexif.ArgumentError),
])
def test_bad_values_are_refused_and_change_nothing(key, value, error):
    with zexif.open(picture()) as doc:
        before = doc.to_bytes()
        with pytest.raises(error):
            doc[key] = value
        with pytest.raises(zexif.ArgumentError):
            doc.set_gps(91, 0)
        with pytest.raises(KeyError):
            del doc["Artist"]
        assert doc.to_bytes() == before


def test_saving_over_a_missing_folder_fails_and_keeps_the_source(tmp_path):
    path = shutil.copy(os.path.join(SAMPLES, "jpg", "Canon_40D.jpg"), tmp_path) if sample_files() else None
    if path is None:
        path = str(tmp_path / "made.jpg")
        (tmp_path / "made.jpg").write_bytes(picture())
    before = open(path, "rb").read()
    with zexif.open(path) as doc:
        doc["Artist"] = "x"
        with pytest.raises(zexif.OpenError) as failure:
            doc.save(str(tmp_path / "no" / "such" / "dir.jpg"))
        assert isinstance(failure.value, OSError) and failure.value.code == 2
    assert open(path, "rb").read() == before
