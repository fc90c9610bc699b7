import io
import os
import sys

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "python"))
# Absolute, for the example's processes, which run in another folder.
os.environ["ZEXIF_LIBRARY"] = os.path.abspath(os.environ.get("ZEXIF_LIBRARY", os.path.join(ROOT, "build", "libzexif.so")))

SAMPLES = os.environ.get("ZEXIF_SAMPLES", os.path.join(ROOT, "..", "shared", "samples"))
TOOL = os.path.join(ROOT, "build", "zexif")


def sample_files():
    if not os.path.isdir(SAMPLES):
        return []
    return sorted(os.path.join(folder, name) for folder, _dirs, names in os.walk(SAMPLES)
                  for name in names if name.lower().endswith((".jpg", ".tiff")))


needs_samples = pytest.mark.skipif(not sample_files(), reason="no samples at %s (set ZEXIF_SAMPLES)" % SAMPLES)


def sample_params():
    return [pytest.param(path, id=os.path.relpath(path, SAMPLES)) for path in sample_files()] or \
        [pytest.param(None, marks=needs_samples)]


def picture(kind="JPEG"):
    """The bytes of a small picture without any metadata."""
    from PIL import Image
    out = io.BytesIO()
    Image.new("RGB", (16, 8), (200, 40, 10)).save(out, kind)
    return out.getvalue()
