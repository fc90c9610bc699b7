"""Bad files and bad calls raise zexif.Error subclasses; nothing crashes or leaks."""

import os
import pickle
import random
import subprocess
import sys

import pytest

import zexif
from conftest import ROOT, picture, sample_files

JPEG = picture()

# (source, exception of read, exception of open); None: it loads.
SOURCES = [
    (b"", zexif.FormatError, zexif.FormatError),
    (b"not an image at all", zexif.FormatError, zexif.FormatError),
    (b"MM\x00*\xff\xff\xff\xff", None, zexif.DamagedError),
    (JPEG[:2], None, None),
    ("/nonexistent/photo.jpg", zexif.OpenError, zexif.OpenError),
    (bytearray(JPEG), None, None),
    (42, zexif.ArgumentError, zexif.ArgumentError),
]


@pytest.mark.parametrize("source, read_error, open_error", SOURCES)
def test_bad_sources_raise_their_class(source, read_error, open_error):
    for make, error in ((zexif.read, read_error), (zexif.open, open_error)):
        if error is None:
            with make(source) as handle:
                assert handle.get("Make") is None and dict(handle.tags) == {} and handle.thumbnail is None
        else:
            with pytest.raises(error) as raised:
                make(source)
            assert type(raised.value) is error and 1 <= raised.value.code <= 10 and raised.value.text


def damaged_copies():
    """A real file cut short and with bytes flipped, in many places."""
    path = next((p for p in sample_files() if p.endswith("Canon_40D.jpg")), None)
    data = open(path, "rb").read() if path else JPEG
    shuffle = random.Random(18)
    for _ in range(60):
        copy = bytearray(data[:shuffle.randrange(2, len(data))])
        for _ in range(shuffle.randrange(0, 8)):
            copy[shuffle.randrange(len(copy))] = shuffle.randrange(256)
        yield bytes(copy)


def test_damaged_files_raise_or_read_but_never_crash():
    for data in damaged_copies():
        for make in (zexif.read, zexif.open):
            try:
                with make(data) as handle:
                    dict(handle.tags), handle.thumbnail
                    for ifd in (1, "exif", "gps", "interop"):
                        try:
                            dict(handle.ifd(ifd))
                        except zexif.NotFound:
                            pass
                    if make is zexif.read:
                        handle.gps, handle.orientation, handle.datetime_original
                    else:
                        handle.to_bytes()
            except zexif.Error:
                pass


def test_closed_handles_refuse_and_close_once():
    for make in (zexif.read, zexif.open):
        with pytest.raises(RuntimeError):
            with make(JPEG) as handle:
                # What a view has fetched goes with its reader.
                handle.get("Make")
                raise RuntimeError
        assert handle.closed
        handle.close()
        for use in (lambda: handle["Make"], lambda: handle["Artist"], lambda: handle.thumbnail, lambda: dict(handle.tags)):
            with pytest.raises(zexif.ArgumentError):
                use()


@pytest.mark.parametrize("error", [zexif.NotFound(5, "no tag", "a.jpg"), zexif.OpenError(2, "can't open", "a.jpg", 2),
                                   zexif.LibraryNotFound(["here", "there"])])
def test_errors_survive_pickling(error):
    copy = pickle.loads(pickle.dumps(error))
    assert (type(copy), copy.code, str(copy)) == (type(error), error.code, str(error))


def test_a_missing_library_says_where_it_looked():
    if os.path.exists(os.path.join(ROOT, "python", "zexif", "libzexif.so")):
        pytest.skip("a libzexif.so lies in the package folder")
    code = "import zexif\ntry:\n    zexif.read('x')\nexcept ImportError as e:\n    print(type(e).__name__, e)"
    env = dict(os.environ, ZEXIF_LIBRARY="/nowhere/libzexif.so", PYTHONPATH=os.path.join(ROOT, "python"))
    said = subprocess.run([sys.executable, "-c", code], env=env, capture_output=True, text=True).stdout
    assert said.startswith("LibraryNotFound")
    for place in ("ZEXIF_LIBRARY=/nowhere/libzexif.so", "package folder", "system's library path"):
        assert place in said
