#!/usr/bin/env python3
"""Index a photo tree with zexif on a Dask cluster.

    examples/index_photos.py DIR OUT.csv [--scheduler HOST:PORT] [--workers N]

Every JPEG and TIFF file under DIR becomes one row: path, size, camera make
and model, lens, date taken, exposure time, orientation, latitude, longitude
and altitude. The paths go into a dask.bag, each task reads its files with
zexif.read, and the rows become a dask dataframe written to OUT: one CSV file,
or Parquet where OUT ends in .parquet and pyarrow is installed.

Without --scheduler a LocalCluster of N worker processes runs on this
machine; with it, the cluster of that scheduler does the work, and each of
its workers needs the zexif package and libzexif.so (ZEXIF_LIBRARY, the
package folder or the system's library path).
"""

import argparse
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
EXTENSIONS = (".jpg", ".jpeg", ".tif", ".tiff")
COLUMNS = {"path": "object", "size": "int64", "make": "object", "model": "object", "lens": "object",
           "date": "datetime64[ns]", "exposure": "float64", "orientation": "Int64", "lat": "float64",
           "lon": "float64", "alt": "float64"}

try:
    import zexif
except ImportError:
    # Run from the repository: the package beside this folder, the library
    # of the build. Worker processes of a LocalCluster inherit both.
    sys.path.insert(0, os.path.join(os.path.dirname(HERE), "python"))
    os.environ.setdefault("ZEXIF_LIBRARY", os.path.join(os.path.dirname(HERE), "build", "libzexif.so"))
    import zexif


def photo_paths(folder):
    return sorted(os.path.join(root, name) for root, _dirs, names in os.walk(folder)
                  for name in names if name.lower().endswith(EXTENSIONS))


def photo_row(path):
    """One file's row; a file zexif can't read keeps its path and size."""
    row = dict.fromkeys(COLUMNS)
    row["path"] = path
    row["size"] = os.path.getsize(path)
    try:
        with zexif.read(path) as meta:
            get = meta.get
            row["make"] = _clean(get("Make"))
            row["model"] = _clean(get("Model"))
            row["lens"] = _clean(get("LensModel"))
            moment = meta.datetime_original
            row["date"] = None if moment is None else moment.replace(tzinfo=None)
            exposure = get("ExposureTime")
            row["exposure"] = None if exposure is None or isinstance(exposure, tuple) else float(exposure)
            row["orientation"] = meta.orientation
            row["lat"], row["lon"], row["alt"] = meta.gps or (None, None, None)
    except zexif.Error:
        pass
    return row


def _clean(text):
    return text.strip() or None if isinstance(text, str) else None


def frame_of(rows):
    """The rows as a pandas frame with the index's column types."""
    import pandas
    frame = pandas.DataFrame(rows, columns=list(COLUMNS))
    return frame.astype(COLUMNS)


def index_bag(paths, partitions):
    import dask.bag
    return dask.bag.from_sequence(paths, npartitions=partitions).map(photo_row)


def write(frame, out):
    """A dask dataframe to OUT: Parquet for .parquet where pyarrow is there,
    else a single CSV file."""
    if out.endswith(".parquet"):
        try:
            import pyarrow  # noqa: F401
        except ImportError:
            sys.exit("index_photos: writing Parquet needs pyarrow; name a .csv file instead")
        frame.to_parquet(out, write_index=False)
    else:
        frame.to_csv(out, single_file=True, index=False)


def run(folder, out, scheduler=None, workers=2):
    from dask.distributed import Client, LocalCluster, progress

    paths = photo_paths(folder)
    if not paths:
        sys.exit("index_photos: no JPEG or TIFF files under %s" % folder)
    cluster = None
    if scheduler:
        client = Client(scheduler)
    else:
        cluster = LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None)
        client = Client(cluster)
    try:
        # The workers find libzexif.so the way this process does.
        library = os.environ.get("ZEXIF_LIBRARY")
        if library:
            client.run(os.environ.__setitem__, "ZEXIF_LIBRARY", library)
        partitions = max(1, min(len(paths), 4 * max(1, len(client.scheduler_info()["workers"]))))
        rows = index_bag(paths, partitions)
        frame = rows.to_dataframe(meta=frame_of([]))
        frame = frame.persist()
        # Both the LocalCluster and a real one run distributed's scheduler,
        # whose progress bar this is.
        if sys.stdout.isatty():
            progress(frame)
            print()
        write(frame, out)
    finally:
        client.close()
        if cluster is not None:
            cluster.close()
    return len(paths)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("folder", metavar="DIR")
    parser.add_argument("out", metavar="OUT")
    parser.add_argument("--scheduler", metavar="HOST:PORT", help="a running Dask scheduler (default: a LocalCluster)")
    parser.add_argument("--workers", type=int, default=2, metavar="N", help="LocalCluster workers (default 2)")
    options = parser.parse_args()
    count = run(options.folder, options.out, options.scheduler, options.workers)
    print("indexed %d files into %s" % (count, options.out))


if __name__ == "__main__":
    main()
