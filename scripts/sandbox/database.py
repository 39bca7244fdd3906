"""A sample database: nested folders of data files among files that don't belong to it."""

import hashlib
import os
import random
from pathlib import Path

SUFFIXES = ("zqimage", "zqin")
DECOYS = ("Read Me.txt", "plate.b.zqin", "plate.ZQIN", "plate.zqin.bak", "zqin", "Charts/.DS_Store")
FOLDERS = ("Charts", "Charts/North/Deep", "Plates & Scans", "Ünïcode", ".hidden")
ODD_NAMES = (".zqin", "-n.zqin", "two  blanks.zqin", "it's \"quoted\".zqimage", "100%1.zqin", "日本.zqimage")
FILES = 40
OLDEST = 1_000_000_000


def make(folder, total, files=FILES, sparse=False):
    """Fills the new folder with `files` data files of `total` bytes together, and with decoys.

    The bytes are the same on every run; with `sparse` they are holes, which take neither time nor space.
    """
    folder = Path(folder)
    for name in FOLDERS:
        (folder / name).mkdir(parents=True)
    for name in DECOYS:
        (folder / name).write_bytes(b"not a data file\n")
    names = [*ODD_NAMES, *(f"plate {i:03}.{SUFFIXES[i % 2]}" for i in range(files - len(ODD_NAMES)))]
    source = random.Random(total)
    for i, name in enumerate(names):
        place = folder / FOLDERS[i % len(FOLDERS)] / name
        size = total // files if i else total - (files - 1) * (total // files)
        with open(place, "wb") as data:
            if not sparse:
                data.write(source.randbytes(size))
            data.truncate(size)
        os.utime(place, ns=(OLDEST * 10**9, (OLDEST + i) * 10**9 + i))
    (folder / "link.zqin").symlink_to(place)
    (folder / "linked folder").symlink_to(folder / FOLDERS[0])


def is_data_file(path):
    return path.name.partition(".")[2] in SUFFIXES and path.is_file() and not path.is_symlink()


def data_files(folder):
    """The data files below the folder; links are not followed."""
    for where, _, names in os.walk(folder):
        yield from (path for path in (Path(where, name) for name in names) if is_data_file(path))


def content(folder):
    """What an installation must keep of each data file, by name: size, time of modification and a digest."""
    kept = {}
    for path in data_files(folder):
        with open(path, "rb") as data:
            digest = hashlib.file_digest(data, "sha256").hexdigest()
        kept[path.name] = (path.stat().st_size, path.stat().st_mtime_ns, digest)
    return kept
