#!/usr/bin/env python3
"""Says how much of the sources below FOLDER the tests reach: lines, branches, and MC/DC pairs, which show for every part
of a condition that it decides by itself. Prints every place that is missed; exit code 1 when there is one.

Code that is compiled into several executables, or from a template for several types, is reached when it is in one of
them. The export of each executable is read apart, since llvm-cov keeps one instance only of what several have.

    check_coverage.py FOLDER EXPORT...     EXPORT.json and EXPORT.lcov are written by llvm-cov export"""

import collections
import functools
import json
import pathlib
import sys

Place = collections.namedtuple("Place", "file line column last_line last_column")


@functools.cache
def source(file):
    return pathlib.Path(file).read_text(encoding="utf-8").splitlines()


def text_at(place):
    lines = source(place.file)[place.line - 1:place.last_line]
    lines[-1] = lines[-1][:place.last_column - 1]
    lines[0] = lines[0][place.column - 1:]
    return " ".join(" ".join(lines).split())


class Coverage:
    def __init__(self, folder):
        self.folder = folder + "/"
        self.lines = collections.Counter()  # by file and number
        self.branches = collections.defaultdict(lambda: [0, 0])  # how often true, how often false
        self.decisions = {}  # for each part whether a pair shows that it decides

    def read(self, export):
        self.read_lines(pathlib.Path(export + ".lcov"))
        for function in json.loads(pathlib.Path(export + ".json").read_text())["data"][0]["functions"]:
            for *where, taken, not_taken, file, _, _ in function["branches"]:
                counts = self.branches[Place(function["filenames"][file], *where)]
                counts[0] += taken
                counts[1] += not_taken
            for *where, file, _, parts in function["mcdc_records"]:
                place = Place(function["filenames"][file], *where)
                before = self.decisions.get(place, [False] * len(parts))
                self.decisions[place] = [old or new for old, new in zip(before, parts, strict=True)]

    def read_lines(self, export):
        for record in export.read_text().splitlines():
            kind, _, value = record.partition(":")
            if kind == "SF":
                file = value
            elif kind == "DA":
                number, count = value.split(",")
                self.lines[file, int(number)] += int(count)

    def parts_of(self, decision):
        """The places of the conditions that a decision is put together from."""
        within = [place for place in self.branches if place.file == decision.file
                  and (decision.line, decision.column) <= (place.line, place.column)
                  and (place.last_line, place.last_column) <= (decision.last_line, decision.last_column)]
        return sorted(within)

    def of_folder(self, places):
        return {place: value for place, value in sorted(places.items()) if place[0].startswith(self.folder)}

    def missed(self):
        for (file, line), count in self.of_folder(self.lines).items():
            if count == 0:
                yield file, line, f"is never run: {source(file)[line - 1].strip()}"
        for place, counts in self.of_folder(self.branches).items():
            for count, value in zip(counts, ("true", "false")):
                if count == 0:
                    yield place.file, place.line, f"is never {value}: {text_at(place)}"
        for place, parts in self.of_folder(self.decisions).items():
            conditions = self.parts_of(place)
            for number, decides in enumerate(parts):
                if not decides:
                    part = text_at(conditions[number]) if len(conditions) == len(parts) else f"part {number + 1}"
                    yield place.file, place.line, f"never decides by itself: {part}, in: {text_at(place)}"

    def figures(self):
        yield "lines", [count > 0 for count in self.of_folder(self.lines).values()]
        yield "branches", [count > 0 for counts in self.of_folder(self.branches).values() for count in counts]
        yield "MC/DC pairs", [part for parts in self.of_folder(self.decisions).values() for part in parts]


def main():
    folder, *exports = sys.argv[1:]
    coverage = Coverage(folder)
    for export in exports:
        coverage.read(export)
    missed = list(coverage.missed())
    for file, line, what in missed:
        print(f"{pathlib.Path(file).relative_to(pathlib.Path.cwd())}:{line}: {what}")
    for kind, reached in coverage.figures():
        if not reached:
            sys.exit(f"{folder} has no {kind}: nothing was measured")
        print(f"{sum(reached)} of {len(reached)} {kind}, {100 * sum(reached) / len(reached):.1f} %")
    sys.exit(1 if missed else 0)


main()
