"""The trees of files that are measured on, made once under build/bench and kept."""

import os
import shutil
from pathlib import Path


def tree(place, folders, data_files, others=0, size=4096, filled=False):
    """A tree of so many data files and others in each of the folders.

    Only with `filled` do the data files hold bytes; otherwise they are holes of that size.
    """
    place = Path(place)
    if not place.exists():
        unfinished = place.with_name(place.name + ".unfinished")
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
    descriptor = os.open(path, os.O_CREAT | os.O_WRONLY, 0o644)
    os.truncate(descriptor, size)
    block = os.urandom(min(size, 1 << 20)) if filled else b""
    for _ in range(0, size if filled else 0, 1 << 20):
        os.write(descriptor, block)
    os.close(descriptor)
