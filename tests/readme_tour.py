#!/usr/bin/env python3
"""Runs every example of the README's tour of zexif as written, in an empty
folder beside a link to the build folder, as on a clean clone after the
build: each command must succeed and print what the README shows (blocks
that leave lines out with "..." are only run).

    readme_tour.py README.md BUILD_DIR
"""
import os, subprocess, sys, tempfile

readme, build = sys.argv[1], sys.argv[2]
text = open(readme, encoding="utf-8").read()
tour = text[text.index("## A tour of zexif"):]
tour = tour[:tour.index("\n## ", 1)]
blocks = tour.split("```")[1::2]

failures = 0
with tempfile.TemporaryDirectory() as work:
    os.symlink(os.path.abspath(build), os.path.join(work, "build"))
    for block in blocks:
        lines = block.strip("\n").split("\n")
        whole = not any(line.strip() == "..." for line in lines)
        steps = []
        for line in lines:
            if line.startswith("$ "):
                steps.append([line[2:], []])
            elif steps:
                steps[-1][1].append(line)
        for command, shown in steps:
            run = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=work, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, encoding="utf-8")
            printed = run.stdout.rstrip("\n").split("\n") if run.stdout else []
            if run.returncode != 0 or (whole and printed != shown):
                failures += 1
                print("README example failed: $ %s (exit %d)\n%s" % (command, run.returncode, run.stdout))
sys.exit(1 if failures else 0)
