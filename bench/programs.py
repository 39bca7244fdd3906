"""Runs one measured program once and returns what it took."""

import ctypes
import json
import os
import re
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / os.environ["BUILD_FOLDER"]
BUNDLE = BUILD / "Lumetra Database Installer.app"
INSTALLER = BUNDLE / "Contents/MacOS/Lumetra Database Installer"
WORKERS = BUILD / "bench/bench_workers"
BARE = BUILD / "bench/bench_bare"
DRIVER = BUILD / "tests/faults_driver"
# From the X protocol.
SUBSTRUCTURE_NOTIFY_MASK, MAP_NOTIFY = 1 << 19, 19

sys.path.append(str(ROOT / "tests/faults"))
import world  # noqa: E402


def seconds_of(*command):
    begin = time.monotonic()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - begin


def figures(*command):
    """What a program without windows reports of itself: bench_workers or bench_bare."""
    return json.loads(subprocess.check_output([str(part) for part in command]))


def find(source):
    return seconds_of("find", source, "-type", "f", "(", "-name", "*.zqimage", "-o", "-name", "*.zqin", ")",
                      "-printf", "%s\\n")


def shell_loop(tool, source, destination):
    """The seconds that a shell takes to run the tool for one file after another."""
    return seconds_of("sh", "-c", f'for file in "$1"/*/*; do {tool} "$file" "$2/"; done', "sh", source, destination)


def system_calls(source):
    """How many times a scan makes each system call, by its name."""
    summary = subprocess.run(["strace", "-f", "-c", WORKERS, "scan", source], check=True,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    return {name: int(count) for count, name in re.findall(r"^ *\S+ +\S+ +\S+ +(\d+) +(?:\d+ +)?(\w+)$", summary, re.M)}


def longest_gap(**what):
    """The longest time that the event loop stood still in a walk through the whole wizard, in milliseconds."""
    case = world.Case("gap", seconds=600, **what)
    seen = world.run(case, str(DRIVER), str(BUNDLE / "Contents"), "")
    if wrong := world.faults_of(case, seen):
        raise RuntimeError("; ".join(wrong))
    return seen["gap"]


def start(*command):
    """The seconds from a program's start until the display shows its window, and its resident memory in kB
    half a second later."""
    x11 = ctypes.CDLL("libX11.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    x11.XSelectInput(display, x11.XDefaultRootWindow(display), SUBSTRUCTURE_NOTIFY_MASK)
    x11.XSync(display, False)
    event = (ctypes.c_int * 48)()
    begin = time.monotonic()
    with subprocess.Popen(command, stderr=subprocess.DEVNULL) as running:
        while event[0] != MAP_NOTIFY:
            if x11.XPending(display):
                x11.XNextEvent(display, event)
            elif running.poll() is not None:
                raise RuntimeError(f"{command[0]} ended with status {running.returncode}")
            else:
                time.sleep(0.0005)
        seconds = time.monotonic() - begin
        time.sleep(0.5)
        status = Path(f"/proc/{running.pid}/status").read_text()
        running.kill()
    x11.XCloseDisplay(display)
    return {"seconds": seconds, "resident": int(re.search(r"VmRSS:\s+(\d+)", status)[1])}
