"""One run of the installer in a world of its own: a mount namespace with a small database, real or scripted tools
and a user (driver.cpp), and the one thing that must hold after it, whatever happened."""

import json
import os
import re
import subprocess
import sys
import tempfile
from dataclasses import asdict, dataclass
from pathlib import Path

SOURCE = "/opt/Lumetra"
PARENT = "/Library/Application Support"
DESTINATION = f"{PARENT}/Brindlewerks/Lumetra"
PREFERENCE = "/Library/Preferences/com.brindle.CorvaneLumetra.plist"
DRIVER = "/opt/Installer/driver"
INSTALLED = "Database Installed"

# `source` and `target` in the faults of a tool: the file that it is run for, and the one that it writes.
TOOL = """#!/bin/sh
for source; do case $source in {SOURCE}/*) break;; esac; done
target="{DESTINATION}/$(basename "$source")"
part() {{ head -c 1000 "$source" >"$target"; : >/tmp/tool-runs; }}
case $source in */c.zqin) {fault};; esac
exec /opt/real/{tool} "$@"
"""


@dataclass
class Case:
    """`cp`, `mv`, `df`: what the tool does at the third file (df: altogether) before it does its work. `setup` runs
    before the program, `limits` is the shell's way to start it."""

    name: str
    move: bool = False
    state: str = "-"
    means: str = "-"
    delay: int = 0
    cp: str = ""
    mv: str = ""
    df: str = ""
    setup: str = ""
    limits: str = "exec"
    room: str = "64m"
    files: int = 8
    size: int = 300_000
    empty: int = 0
    outcome: str = INSTALLED
    # The longest that an answer to the stop and any other event may take, in milliseconds; 0 is no limit.
    answer: int = 0
    gap: int = 0
    seconds: int = 60
    lost: tuple = ()
    silent: bool = False
    failing: str = ""


def sh(command, **more):
    subprocess.run(["sh", "-ec", command], check=True, **more)


def lay(case, driver, contents, preload):
    """Makes the world and enters it."""
    root = tempfile.mkdtemp()
    sh(f"""mount --make-rprivate /; mount -t tmpfs -o nr_inodes=1m none {root}; cd {root}; mkdir -m 700 root
        mkdir -p usr etc proc dev tmp opt/real opt/Installer/Contents {SOURCE[1:]} '.{PARENT}' Library/Preferences
        for folder in usr etc proc dev; do mount --rbind /$folder $folder; done
        for folder in bin sbin lib lib64; do ln -s usr/$folder $folder; done
        touch opt/Installer/driver opt/preload.so opt/count
        cp '{Path(__file__).resolve().parent.parent}/'*.supp opt
        mount --bind '{driver}' opt/Installer/driver; mount --bind '{contents}' opt/Installer/Contents
        test -z '{preload}' || mount --bind '{preload}' opt/preload.so
        cp /usr/bin/cp /usr/bin/mv /usr/bin/df opt/real""")
    os.chroot(root)
    os.chdir("/")
    if not case.move:
        sh(f"mount -t tmpfs none {SOURCE}; mount -t tmpfs -o size={case.room} none /Library; mkdir -p '{PARENT}'"
           " /Library/Preferences")
    for tool in ("cp", "mv", "df"):
        fault = getattr(case, tool)
        text = f"#!/bin/sh\n{fault}\n" if tool == "df" else TOOL.format(fault=fault, tool=tool, **globals())
        if fault:
            Path(f"/opt/{tool}").write_text(text)
            sh(f"chmod 755 /opt/{tool}; mount --bind /opt/{tool} /usr/bin/{tool}")
    for i in range(case.files):
        Path(SOURCE, f"{chr(97 + i) if i < 26 else i}.zqin").write_bytes(os.urandom(case.size))
    for i in range(case.empty):
        os.close(os.open(f"{SOURCE}/empty {i}.zqimage", os.O_CREAT))


def content(folder, names=None):
    """Bytes and time of every file in an open folder."""
    files = {}
    for name in os.listdir(folder) if names is None else names:
        try:
            with open(name, "rb", opener=lambda path, flags: os.open(path, flags, dir_fd=folder)) as data:
                files[name] = (data.read(), os.fstat(data.fileno()).st_mtime_ns)
        except (IsADirectoryError, FileNotFoundError):
            pass
    return files


def installed():
    return content(os.open(DESTINATION, os.O_RDONLY)) if os.path.isdir(DESTINATION) else {}


def invariant(case, before, older, source, title):
    """What is broken of: each file whole in the source or the destination, no part of a file at the destination,
    nothing incomplete shown as installed or recorded."""
    there = installed()
    marked = there.pop(".unfinished-installation", None)
    left = content(source, before)
    wrong = [f"{name} is lost" for name, file in before.items()
             if file not in (left.get(name), there.get(name)) and name not in case.lost]
    wrong += [f"{name} is a part" for name, file in there.items() if file not in (before.get(name), older.get(name))]
    wrong += [f"{name} of old is lost" for name in older if name not in there]
    if title == INSTALLED and not case.silent and any(there.get(name) != file for name, file in before.items()):
        wrong.append("shown as installed, but isn't")
    if title == INSTALLED and marked:
        wrong.append("installed, but marked as unfinished")
    if title == "Database was not installed" and there and not marked and not case.failing:
        wrong.append("not installed, but not marked as unfinished")
    if os.path.exists(PREFERENCE) and title != INSTALLED:
        wrong.append("recorded, but not installed")
    return wrong


def inside(case, *places):
    """In the namespace: one run. Returns what was seen."""
    lay(case, *places)
    source = os.open(SOURCE, os.O_RDONLY)
    before = content(source)
    environment = {"PATH": "/usr/bin:/usr/sbin", "HOME": "/root", "XDG_RUNTIME_DIR": "/root",
                   "QT_QPA_PLATFORM": "offscreen", "ASAN_OPTIONS": "fast_unwind_on_malloc=0",
                   "LSAN_OPTIONS": "print_suppressions=0:suppressions=/opt/leaks.supp",
                   "TSAN_OPTIONS": "ignore_noninstrumented_modules=1:suppressions=/opt/races.supp"}
    if case.failing:
        Path("/opt/count").write_bytes(b"\xff" * 4)
        environment |= {"LD_PRELOAD": "/opt/preload.so", "FAILING_CALLS": f"/opt/count:{case.failing}"}
    sh(case.setup, cwd=SOURCE)
    older = installed()
    command = f"{case.limits} timeout -k 5 {case.seconds} {DRIVER} {case.state} {case.means} {case.delay}"
    run = subprocess.run(["sh", "-c", command], env=environment, stdin=subprocess.DEVNULL,
                         capture_output=True, check=False)
    seen = {"outcome": "|", "answer": -1, "gap": -1, "left": -1, **json.loads(run.stdout or "{}")}
    title = seen["outcome"].partition("|")[0]
    return {**seen, "status": run.returncode, "wrong": invariant(case, before, older, source, title),
            "calls": int.from_bytes(Path("/opt/count").read_bytes(), "little"),
            "errors": run.stderr.decode(errors="replace")[-3000:]}


def namespace():
    user = [] if os.geteuid() == 0 else ["--map-root-user"]
    return ["unshare", *user, "--mount", "--pid", "--fork", "--mount-proc"]


def possible():
    return subprocess.run([*namespace(), "true"], check=False).returncode == 0


def run(case, *places):
    """Runs a case in a namespace of its own."""
    done = subprocess.run([*namespace(), sys.executable, __file__, json.dumps(asdict(case)), *places],
                          capture_output=True, check=False)
    if done.returncode:
        return {"wrong": ["the world can't be laid: " + done.stderr.decode(errors="replace")[-500:]]}
    return json.loads(done.stdout)


def faults_of(case, seen, patience=1):
    """What is wrong with what was seen of the case."""
    wrong = list(seen["wrong"])
    if "status" not in seen:
        return wrong
    if seen["status"] != 0:
        wrong.append(f"ended with status {seen['status']}: {seen['errors']}")
    if not re.match(case.outcome, seen["outcome"], re.DOTALL):
        wrong.append(f"shows {seen['outcome']!r}, not {case.outcome!r}")
    took = seen["left" if case.state == "scanning" else "answer"]
    if case.answer and not 0 <= took <= case.answer * patience:
        wrong.append(f"answered after {took} ms")
    if case.gap and not 0 <= seen["gap"] <= case.gap * patience:
        wrong.append(f"its event loop stood still for {seen['gap']} ms")
    return wrong


if __name__ == "__main__":
    json.dump(inside(Case(**json.loads(sys.argv[1])), *sys.argv[2:]), sys.stdout)
