"""Measures everything and prints the table; bench/run says the rest.

Each ratio is the median of several turns, in which the things compared run one after the other, because absolute times
say little on a busy machine.
"""

import argparse
import os
import statistics
import subprocess
import sys
from dataclasses import dataclass
from types import SimpleNamespace
from typing import Optional

import data
import programs

TOOLS = {"copy": ("/bin/cp", "-pf"), "move": ("/bin/mv",)}
CALLS = {"status": ("newfstatat", "statx", "stat", "lstat", "fstat"), "open": ("open", "openat"), "close": ("close",)}
DROP_CACHES = "/proc/sys/vm/drop_caches"
THERE, BACK = data.PLACE / "memory/there", data.PLACE / "memory/back"
# `slow_turns` is for what takes minutes; each of the `folders` holds 750 data files and 250 others.
FULL = SimpleNamespace(turns=15, slow_turns=5, folders=200, many_folders=2000, copied=2000)
QUICK = SimpleNamespace(turns=5, slow_turns=3, folders=20, many_folders=100, copied=100)
LISTED = 100_000
BIG = 64 << 20


@dataclass
class Row:
    figure: str
    against: str
    values: list
    goal: Optional[float]  # None: for information
    unit: str = ""
    worst: bool = False  # met only when the largest value is

    def met(self):
        return (max(self.values) if self.worst else statistics.median(self.values)) <= self.goal

    def cells(self):
        digits = 0 if self.unit else 3
        numbers = [f"{number:.{digits}f}{self.unit}"
                   for number in (statistics.median(self.values), min(self.values), max(self.values))]
        judged = ["", ""] if self.goal is None else [f"≤ {self.goal:g}{self.unit}", "yes" if self.met() else "no"]
        return [self.figure, self.against, *numbers, *judged]


class Bench:
    def __init__(self, scale):
        self.scale = scale
        self.rows = []
        self.scanned = data.tree(f"scan-{scale.folders}", scale.folders, 750, 250)
        self.copied = data.tree(f"copy-{scale.copied}", 1, scale.copied, filled=True)

    def in_turn(self, *runs, turns=None):
        """The results of the runs, turn by turn, in alternating order. A first round doesn't count."""
        for run in runs:
            run()
        results = []
        for turn in range(turns or self.scale.turns):
            order = -1 if turn % 2 else 1
            results.append([run() for run in runs[::order]][::order])
        return results

    def compare(self, figure, measured, *references, turns=None):
        """Adds a row for each reference, (name, goal of the ratio or None, what runs it)."""
        results = self.in_turn(measured, *(run for _, _, run in references), turns=turns)
        for i, (against, goal, _) in enumerate(references, 1):
            self.rows.append(Row(figure, against, [result[0] / result[i] for result in results], goal))

    def scan(self):
        def seconds():
            return programs.figures(programs.WORKERS, "scan", self.scanned)["seconds"]

        def find():
            return programs.find(self.scanned)

        files = f"scan of {self.scale.folders * 1000:,} files"
        self.compare(f"{files}, warm", seconds, ("find", 0.9, find))
        if os.access(DROP_CACHES, os.W_OK):
            self.compare(f"{files}, cold", lambda: cold(seconds), ("find", 1.05, lambda: cold(find)),
                         turns=self.scale.slow_turns)

    def memory(self):
        once = programs.figures(programs.WORKERS, "scan", self.scanned)
        figure = "memory held per data file"
        self.rows.append(Row(figure, "QFileInfo with its path", [once["heap"] / once["bare"]], 1.02))
        self.rows.append(Row(figure, "", [once["heap"] / once["files"]], None, " bytes"))

    def growth(self):
        many = data.tree(f"scan-{self.scale.many_folders}", self.scale.many_folders, 750, 250)

        def seconds_per_file(source):
            result = programs.figures(programs.WORKERS, "scan", source)
            return result["seconds"] / result["files"]

        self.compare(f"scan per file, of {self.scale.many_folders * 1000:,} files", lambda: seconds_per_file(many),
                     (f"of {self.scale.folders * 1000:,}", 1.1, lambda: seconds_per_file(self.scanned)),
                     turns=self.scale.slow_turns)

    def system_calls(self):
        empty = data.emptied(data.PLACE / "empty")
        calls, without = programs.system_calls(self.scanned), programs.system_calls(empty)
        for call, names in CALLS.items():
            per, count = ("data files + folders", 751) if call == "status" else ("folders", 1)
            added = sum(calls.get(name, 0) - without.get(name, 0) for name in names)
            self.rows.append(Row(f"{call} calls of the scan", per, [added / count / self.scale.folders], 1))

    def source(self, kind, tree):
        """Empties the destination and returns the tree; for a move, a copy of it, as it won't stay."""
        data.emptied(THERE)
        if kind == "copy":
            return tree
        subprocess.run(["cp", "-pr", tree, data.emptied(BACK)], check=True)
        return BACK / tree.name

    def worker(self, kind, tree, count, key="seconds"):
        return programs.figures(programs.WORKERS, kind, self.source(kind, tree), THERE, count)[key]

    def bare(self, kind, tree, count, key="seconds"):
        return programs.figures(programs.BARE, self.source(kind, tree), THERE, count, *TOOLS[kind])[key]

    def shell(self, kind, tree):
        return programs.shell_loop(" ".join(TOOLS[kind]), self.source(kind, tree), THERE)

    def copy_and_move(self):
        count = self.scale.copied
        for kind, tool in TOOLS.items():
            self.compare(f"{kind} of {count:,} files of 4 KiB", lambda: self.worker(kind, self.copied, count),
                         ("QProcess loop", 1.05, lambda: self.bare(kind, self.copied, count)),
                         ("sh, " + " ".join(tool), None, lambda: self.shell(kind, self.copied)),
                         turns=self.scale.slow_turns)

    def list_length(self):
        listed = data.tree(f"list-{LISTED}", LISTED // 1000, 1000)
        few = data.tree("list-100", 1, 100)
        self.compare(f"copy of one more file, {LISTED:,} files listed",
                     lambda: self.worker("copy", listed, 100, "further"),
                     ("QProcess loop, as many listed", 1.05, lambda: self.bare("copy", listed, 100, "further")),
                     ("100 listed", None, lambda: self.worker("copy", few, 100, "further")))

    def big_files(self):
        big = data.tree(f"big-{BIG >> 20}", 1, 4, size=BIG, filled=True)
        self.compare(f"copy of 4 files of {BIG >> 20} MiB", lambda: self.worker("copy", big, 4),
                     ("sh, /bin/cp -pf", 1.02, lambda: self.shell("copy", big)))

    def gap(self):
        few = {"files": 2, "empty": self.scale.copied - 2, "room": "200m"}
        walks = {"scan": {"empty": self.scale.folders * 1000, "state": "destination", "means": "close",
                          "outcome": "Select"}, "copy": few, "move": {**few, "move": True}}
        gaps = [programs.longest_gap(**what) for what in walks.values() for _ in range(self.scale.slow_turns)]
        self.rows.append(Row("longest gap of the event loop", ", ".join(walks), gaps, 50, " ms", worst=True))

    def start(self):
        given = (programs.ROOT / "resources/images/Orvo_DVD_Artwork.png",
                 programs.BUNDLE / "Contents/Resources/LicenseAgreement.html")
        turns = self.in_turn(lambda: programs.start(programs.INSTALLER), lambda: programs.start(programs.BARE, *given),
                             lambda: programs.start(programs.BARE))
        for figure, key in (("start until the window shows", "seconds"), ("memory of the started wizard", "resident")):
            for i, against, goal in (1, "QWizard, artwork, agreement", 1.15), (2, "empty QWizard", None):
                self.rows.append(Row(figure, against, [turn[0][key] / turn[i][key] for turn in turns], goal))

    PARTS = ("scan", "memory", "system_calls", "growth", "copy_and_move", "list_length", "big_files", "gap", "start")


def cold(run):
    os.sync()
    with open(DROP_CACHES, "w") as caches:
        caches.write("3")
    return run()


def print_table(rows):
    lines = [["figure", "against", "median", "min", "max", "goal", "met"], *(row.cells() for row in rows)]
    widths = [max(map(len, column)) for column in zip(*lines)]
    lines.insert(1, ["-" * width for width in widths])
    for line in lines:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |")


def main():
    parser = argparse.ArgumentParser(prog="bench/run")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--strict", action="store_true")
    parser.add_argument("parts", nargs="*", metavar="PART", help=f"of {', '.join(Bench.PARTS)}; all unless named")
    arguments = parser.parse_args()
    if unknown := set(arguments.parts) - set(Bench.PARTS):
        parser.error(f"no part {', '.join(unknown)}")
    bench = Bench(QUICK if arguments.quick else FULL)
    for part in arguments.parts or Bench.PARTS:
        print(f"measuring: {part}", file=sys.stderr)
        getattr(bench, part)()
    print_table(bench.rows)
    judged = [row.met() for row in bench.rows if row.goal is not None]
    print(f"{sum(judged)} of {len(judged)} goals met")
    sys.exit(arguments.strict and not all(judged))


main()
