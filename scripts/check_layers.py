#!/usr/bin/env python3
"""Keeps the library's include arrows pointing one way.

Usage: check_layers.py ROOT FOLDER...

FOLDER... is the build order of the subsystem folders under ROOT/corvane/, lowest first
(corvane/CMakeLists.txt passes the list it builds). Every header and source of a folder,
tests included, may include headers of its own folder and of folders earlier in the
order, never of a later one; an include that breaks this is reported with its file and
line, and the exit status is 1.

corvane/testing/ holds the helpers of the test programs and stands outside the order:
library code never includes it, and a test may include a helper only when everything the
helper includes (followed through other helpers) is at or below the test's own folder.
Library code also never includes the umbrella header or the programs built on the library
(apps/, ui/, demo/).
"""

import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')
TESTING = "testing"
UMBRELLA = "corvane/corvane.hpp"
PROGRAMS = ("apps/", "ui/", "demo/")


def includes_of(path):
    """The project includes of one file, as (line number, included path)."""
    found = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), start=1):
        match = INCLUDE.match(line)
        if match:
            found.append((number, match.group(1)))
    return found


def folder_of(included):
    """The subsystem folder of an include such as corvane/results/x.hpp, or None."""
    parts = included.split("/")
    return parts[1] if len(parts) == 3 and parts[0] == "corvane" else None


def helper_levels(root, rank):
    """For each corvane/testing/ header, the highest folder it reaches, by rank (-1: none)."""
    helpers = {p.name: p for p in (root / "corvane" / TESTING).glob("*.hpp")}
    levels = {}

    def level(name, visiting=()):
        if name in levels:
            return levels[name]
        highest = -1
        for _, included in includes_of(helpers[name]):
            folder = folder_of(included)
            if folder == TESTING and included.split("/")[2] in helpers and included.split("/")[2] not in visiting:
                highest = max(highest, level(included.split("/")[2], visiting + (name,)))
            elif folder in rank:
                highest = max(highest, rank[folder])
        levels[name] = highest
        return highest

    for name in helpers:
        level(name)
    return levels


def check(root, order):
    rank = {folder: index for index, folder in enumerate(order)}
    helpers = helper_levels(root, rank)
    problems = []
    library = root / "corvane"
    for folder_path in sorted(p for p in library.iterdir() if p.is_dir()):
        folder = folder_path.name
        if folder == TESTING:
            continue
        files = sorted(list(folder_path.glob("*.hpp")) + list(folder_path.glob("*.cpp")))
        if folder not in rank:
            if files:
                problems.append(f"corvane/{folder}/ holds code but has no place in the build order")
            continue
        for path in files:
            shown = path.relative_to(root).as_posix()
            is_test = path.name.endswith("_test.cpp")
            for number, included in includes_of(path):
                where = f"{shown}:{number}: includes {included}"
                target = folder_of(included)
                if included == UMBRELLA:
                    problems.append(f"{where}, the umbrella header (name the headers it needs)")
                elif included.startswith(PROGRAMS):
                    problems.append(f"{where}, a program built on the library")
                elif target == TESTING:
                    name = included.split("/")[2]
                    if not is_test:
                        problems.append(f"{where}, a test helper, from library code")
                    elif helpers.get(name, -1) > rank[folder]:
                        reached = order[helpers[name]]
                        problems.append(f"{where}, a test helper that reaches {reached}/, later than {folder}/")
                elif target is not None and target not in rank:
                    problems.append(f"{where}, a folder that has no place in the build order")
                elif target is not None and rank[target] > rank[folder]:
                    problems.append(f"{where}: {target}/ comes after {folder}/ in the build order")
    return problems


def main(argv):
    if len(argv) < 3:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    root = Path(argv[1])
    problems = check(root, argv[2:])
    for problem in problems:
        print(problem)
    if problems:
        print(f"{len(problems)} include(s) against the build order: {' < '.join(argv[2:])}")
        return 1
    print(f"Includes follow the build order: {' < '.join(argv[2:])}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
