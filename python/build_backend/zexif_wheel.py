"""A build backend of the standard library alone for the zexif package.

pip builds a package in an isolated environment into which it first installs
the backend named in pyproject.toml; setuptools would have to come from the
package index, which a machine without network access can't reach. This
backend is in the source tree, needs nothing, and makes the one kind of wheel
a pure Python package needs.
"""

import base64
import hashlib
import os
import zipfile

NAME = "zexif"
VERSION = "0.2.0"
HERE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DIST_INFO = "%s-%s.dist-info" % (NAME, VERSION)
TAG = "py3-none-any"

METADATA = """Metadata-Version: 2.1
Name: zexif
Version: %s
Summary: Read and edit the Exif, GPS and thumbnail of JPEG and TIFF files through libzexif.so
Requires-Python: >=3.8
""" % VERSION

WHEEL = """Wheel-Version: 1.0
Generator: zexif_wheel
Root-Is-Purelib: true
Tag: %s
""" % TAG


def _package_files():
    folder = os.path.join(HERE, NAME)
    for name in sorted(os.listdir(folder)):
        if name.endswith(".py") or name == "libzexif.so":
            yield os.path.join(folder, name), "%s/%s" % (NAME, name)


def _record_line(archive_name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode("ascii")
    return "%s,sha256=%s,%d" % (archive_name, digest, len(data))


def _write_wheel(wheel_directory, entries):
    filename = "%s-%s-%s.whl" % (NAME, VERSION, TAG)
    records = []
    with zipfile.ZipFile(os.path.join(wheel_directory, filename), "w", zipfile.ZIP_DEFLATED) as wheel:
        for archive_name, data in entries:
            wheel.writestr(archive_name, data)
            records.append(_record_line(archive_name, data))
        record_name = DIST_INFO + "/RECORD"
        records.append(record_name + ",,")
        wheel.writestr(record_name, "\n".join(records) + "\n")
    return filename


def _metadata_entries():
    return [(DIST_INFO + "/METADATA", METADATA.encode()), (DIST_INFO + "/WHEEL", WHEEL.encode())]


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_editable(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = os.path.join(metadata_directory, DIST_INFO)
    os.makedirs(folder, exist_ok=True)
    for archive_name, data in _metadata_entries():
        with open(os.path.join(metadata_directory, archive_name), "wb") as out:
            out.write(data)
    return DIST_INFO


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    entries = []
    for path, archive_name in _package_files():
        with open(path, "rb") as source:
            entries.append((archive_name, source.read()))
    return _write_wheel(wheel_directory, entries + _metadata_entries())


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    # A .pth file puts the source folder on the path.
    return _write_wheel(wheel_directory, [(NAME + ".pth", (HERE + "\n").encode())] + _metadata_entries())
