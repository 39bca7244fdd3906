"""The trees of files for the measurements, made once under build/bench and kept."""

import os
import shutil
from pathlib import Path

PLACE = Path(__file__).resolve().parent.parent / "build/bench"


def tree(name, folders, data_files, others=0, size=4096, filled=False):
    """A tree of `folders` folders, each with that many data files and others.

    With `filled`, random bytes fill the data files; otherwise they are holes of `size` bytes.
    """
    place = PLACE / name
    if not place.exists():
        unfinished = PLACE / f"{name}.unfinished"
        shutil.rmtree(unfinished, ignore_errors=True)
        for number in range(folders):
            folder = unfinished / f"Region {number:03}"
            folder.mkdir(parents=True)
            for i in range(data_files):
                _file(f"{folder}/plate {number:03} {i:04}.{'zqimage' if i % 2 else 'zqin'}", size, filled)
            for i in range(others):
                _file(f"{folder}/note {i:04}.txt", 0, False)
        unfinished.rename(place)
        os.sync()
    return place


def emptied(place):
    shutil.rmtree(place, ignore_errors=True)
    place.mkdir(parents=True)
    return place


def _file(path, size, filled):
    with open(path, "wb") as data:
        if filled:
            data.write(os.urandom(size))
        data.truncate(size)
