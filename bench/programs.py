"""Runs what is measured, once, and says what it took."""

import json
import os
import re
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
PROGRAMS = BUILD / "bench"
BUNDLE = BUILD / "Lumetra Database Installer.app"
INSTALLER = "Contents/MacOS/Lumetra Database Installer"

sys.path.insert(0, str(ROOT / "scripts"))
from sandbox.screen import Screen  # noqa: E402
from sandbox.world import BUNDLE_FOLDER, BUNDLE_NAME, DATABASE, World  # noqa: E402

WORLD_PLUGINS = "/opt/plugins"
DESTINATION = "/Library/Application Support/Brindlewerks/Lumetra"


def build():
    for step in (["cmake", "--preset", "release"], ["cmake", "--build", "--preset", "release", "--target", "bench"]):
        subprocess.run(step, cwd=ROOT, check=True, stdout=subprocess.DEVNULL)


def seconds_of(*command):
    begin = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - begin


def worker(*arguments):
    """One run of a worker of the installer, as it ships, in a program without windows."""
    output = subprocess.run([PROGRAMS / "bench_workers", *map(str, arguments)], check=True, stdout=subprocess.PIPE)
    return json.loads(output.stdout)


def find(source):
    return seconds_of("find", source, "-type", "f", "(", "-name", "*.zqimage", "-o", "-name", "*.zqin", ")",
                      "-printf", "%s\\n")


def shell_loop(tool, source, destination):
    """A shell that runs the tool for one file after the other."""
    return seconds_of("sh", "-c", f'for file in "$1"/*/*; do {tool} "$file" "$2/"; done', "sh", source, destination)


def system_calls(source):
    """How often a scan makes each system call."""
    summary = subprocess.run(["strace", "-f", "-c", PROGRAMS / "bench_workers", "scan", source], check=True,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    return {name: int(count) for count, name in re.findall(r"^ *\S+ +\S+ +\S+ +(\d+) +(?:\d+ +)?(\w+)$", summary, re.M)}


def copy_in_memory(root, source, size):
    """The seconds in which one `cp -p` copies the files of `source` to a disk of that size in memory, in a world.

    Begins as late as the wizard does: a virtual machine takes free memory away after a while, and gives it back slowly.
    """
    world = World(root, BUNDLE, library_size=size, mounts={source: DATABASE})
    world.lay()
    timed = 'sleep 3; begin=$(date +%s%N); /bin/cp -p "$0"/*/* "$1"; echo $(($(date +%s%N) - begin))'
    nanoseconds = subprocess.check_output(world.command("sh", "-c", timed, DATABASE, "/Library"))
    world.remove()
    return int(nanoseconds) / 1e9


class Desktop:
    """A screen that nobody sees, on which the installer as it ships is started and walked through."""

    def __init__(self):
        self._screen = Screen()

    def close(self):
        self._screen.close()

    def start(self, program):
        """Starts the program up to its first painted window."""
        environment = os.environ | self._observed("start", PROGRAMS / "plugins")
        environment["BENCH_STARTED"] = str(time.monotonic_ns())
        return self._answer([program], environment)

    def walk(self, root, source, move=False, task="walk", in_memory=None):
        """Installs `source` with the default answers in a world under `root`: its workers' seconds and gaps.

        As "scan" it ends before it has installed anything. Moved, the source is gone afterwards. `in_memory` is the
        size in bytes of a disk in memory for the destination.
        """
        world = World(root, BUNDLE, mounts={PROGRAMS / "plugins": WORLD_PLUGINS}, library_size=in_memory)
        world.lay()
        world.path(DESTINATION).mkdir(parents=True)
        if move:
            source.rename(world.path(DATABASE))
        else:
            world.mounts[source] = DATABASE
        os.environ["DISPLAY"] = self._screen.name
        observed = (f"{name}={value}" for name, value in self._observed(task, WORLD_PLUGINS).items())
        command = world.command("env", *observed, f"{BUNDLE_FOLDER}/{BUNDLE_NAME}/{INSTALLER}", display=True)
        answer = self._answer(command, os.environ)
        world.remove()
        if task == "walk" and answer["outcome"] != "Database Installed":
            raise RuntimeError(f"the installer ended with: {answer['outcome']}")
        return answer

    def _observed(self, task, plugins):
        return {"DISPLAY": self._screen.name, "QT_PLUGIN_PATH": str(plugins),
                "QT_QPA_GENERIC_PLUGINS": f"observer:{task}"}

    def _answer(self, command, environment):
        output = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                env=environment, timeout=1800)
        return json.loads(output.stdout.splitlines()[0])
