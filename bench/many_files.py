#!/usr/bin/env python3
"""zexif info over many camera JPEGs beside exiv2 and ExifTool asked for the
same four values, and zexif on two threads beside one: points 3 and 4.

    many_files.py ZEXIF SAMPLES COPIES OUT.json

Makes COPIES hard links to the JPEG samples in a temporary folder, runs each
tool once over all of them (fastest of a few runs where the run is short),
checks that the values agree on every distinct sample, and writes the times
and the check to OUT.json.
"""
import json, os, re, shutil, subprocess, sys, tempfile, time
from fractions import Fraction

zexif, samples, copies, out = sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4]
TAGS = ("Make", "Model", "DateTimeOriginal", "ExposureTime")
EXIV2_KEYS = {"Exif.Image.Make": "Make", "Exif.Image.Model": "Model",
              "Exif.Photo.DateTimeOriginal": "DateTimeOriginal", "Exif.Photo.ExposureTime": "ExposureTime"}

def jpegs():
    found = []
    for folder, _, names in os.walk(samples):
        found += [os.path.join(folder, n) for n in names if n.lower().endswith(".jpg") and n != "corrupted.jpg"]
    return sorted(found)

def timed(command, cwd, runs):
    best, output = None, None
    for _ in range(runs):
        start = time.perf_counter()
        done = subprocess.run(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        spent = time.perf_counter() - start
        best, output = (spent, done.stdout) if best is None or spent < best else (best, output)
    return best, output.decode("utf-8", "replace")

def seconds(text):
    text = text.replace(" s", "").strip()
    try:
        return float(Fraction(text))
    except (ValueError, ZeroDivisionError):
        return None

def camera(make, model):
    brand = make.split(" ")[0]
    if not make or model.lower().startswith(brand.lower()):
        return model
    return make + " " + model if model else make

def agree(names, zexif_out, exiv2_out, exiftool_out):
    ours = {entry["file"]: entry for entry in json.loads(zexif_out)}
    theirs = {}
    for line in exiv2_out.splitlines():
        match = re.match(r"^(\S+)\s+(Exif\.\S+)\s+\S+\s+\d+\s*(.*)$", line)
        if match and match.group(2) in EXIV2_KEYS:
            theirs.setdefault(match.group(1), {})[EXIV2_KEYS[match.group(2)]] = match.group(3).strip()
    tool = {entry["SourceFile"]: entry for entry in json.loads(exiftool_out)}
    same, differ = 0, []
    for name in names:
        mine = ours.get(name, {})
        for peer, values in (("exiv2", theirs.get(name, {})), ("exiftool", tool.get(name, {}))):
            values = {k: str(v).strip() for k, v in values.items()}
            expected_date = values.get("DateTimeOriginal")
            checks = [camera(values.get("Make", ""), values.get("Model", "")) == (mine.get("camera") or ""),
                      expected_date is None or expected_date == mine.get("date")]
            if "ExposureTime" in values:
                a, b = seconds(values["ExposureTime"]), seconds((mine.get("exposure") or "").replace(" s", ""))
                checks.append(a is not None and b is not None and abs(a - b) <= 0.02 * a + 1e-9)
            if all(checks):
                same += 1
            else:
                differ.append("%s (%s)" % (name, peer))
    return same, differ

work = tempfile.mkdtemp(prefix="zexif-many-")
try:
    originals = jpegs()
    names = []
    for i in range(copies):
        name = "%05d.jpg" % i
        os.link(originals[i % len(originals)], os.path.join(work, name))
        names.append(name)
    distinct = names[:len(originals)]
    results = {}
    results["zexif"], zexif_out = timed([zexif, "info", "--json"] + names, work, 3)
    results["zexif -j 1"], _ = timed([zexif, "info", "--json", "-j", "1"] + names, work, 3)
    results["zexif -j 2"], _ = timed([zexif, "info", "--json", "-j", "2"] + names, work, 3)
    exiv2 = ["exiv2"] + [a for key in EXIV2_KEYS for a in ("-g", key)]
    results["exiv2"], exiv2_out = timed(exiv2 + names, work, 1)
    exiftool = ["exiftool", "-fast2", "-j"] + ["-" + tag for tag in TAGS]
    results["exiftool"], exiftool_out = timed(exiftool + names, work, 1)
    _, exiftool_distinct = timed(exiftool + distinct, work, 1)
    same, differ = agree(distinct, zexif_out, exiv2_out, exiftool_distinct)
    results["agree"], results["differ"], results["files"] = same, differ, copies
    json.dump(results, open(out, "w"), indent=1)
finally:
    shutil.rmtree(work)
