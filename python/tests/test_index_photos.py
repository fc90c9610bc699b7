"""The cluster example makes on two workers the table one process makes."""

import os
import runpy
import shutil
import subprocess
import sys
import types

import pytest

from conftest import ROOT, SAMPLES, sample_files

pandas = pytest.importorskip("pandas")
pytest.importorskip("dask.dataframe")
pytest.importorskip("distributed")

SCRIPT = os.path.join(ROOT, "examples", "index_photos.py")


def load_example():
    return types.SimpleNamespace(**runpy.run_path(SCRIPT))


@pytest.mark.skipif(not sample_files(), reason="no samples at %s (set ZEXIF_SAMPLES)" % SAMPLES)
def test_two_workers_make_the_single_process_table(tmp_path):
    photos = tmp_path / "photos"
    shutil.copytree(SAMPLES, photos)
    (photos / "not_a_photo.jpg").write_bytes(b"plain text")
    out = tmp_path / "index.csv"
    subprocess.run([sys.executable, SCRIPT, str(photos), str(out), "--workers", "2"], check=True, cwd=tmp_path,
                   capture_output=True, timeout=300)
    example = load_example()
    alone = example.frame_of([example.photo_row(path) for path in example.photo_paths(str(photos))])
    table = pandas.read_csv(out, parse_dates=["date"]).astype(example.COLUMNS)
    pandas.testing.assert_frame_equal(table.sort_values("path").reset_index(drop=True), alone)
    assert len(table) == len(sample_files()) + 1 and table["lat"].notna().sum() >= 9
