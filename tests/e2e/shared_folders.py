"""The folder functions, called by a plain user: each code by what the system refuses."""

import os
import shutil
import subprocess
from pathlib import Path

from rights_cases import PARENT, folder
from sandbox import rights
from sandbox.rights import Agent, BUNDLE, PASSWORD, PLAIN
from sandbox.world import HOME
from walks import expect


class Probe:
    """The plain user's process that calls them."""

    def __init__(self, password=None):
        self._process = subprocess.Popen([f"{BUNDLE}/Contents/MacOS/probe", "-platform", "offscreen"], text=True,
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         user=PLAIN, group=PLAIN, extra_groups=[])
        if password:
            Agent(self._process.pid, password, as_plain=True)

    def expect(self, code, *words):
        self._process.stdin.write("\t".join(words) + "\n")
        self._process.stdin.flush()
        expect((*words, int(self._process.stdout.readline())), (*words, code))


def shared_folders():
    without_rights()
    with_failing_tools()


def without_rights():
    roots, own = folder("/Library/of root"), folder(f"{HOME}/own", PLAIN, PLAIN)
    admins = folder("/Library/of admin", group="admin")
    disk = folder("/Volumes/Disc")
    strangers, groups = folder(f"{disk}/a", PLAIN, PLAIN), folder(f"{disk}/b", PLAIN, "admin")
    rights.mount(disk, disk, "--bind")
    rights.mount(disk, disk, "-o", "remount,bind,ro")
    probe = Probe()
    for code, *call in (
            (0, "scope", "0"), (0, "fixup", "/nowhere"), (3, "product", f"{roots}/x"),
            (5, "resource", f"{roots}/x", "y"), (0, "scope", "1"), (1, "fixup", "/nowhere"),
            (2, "fixup", "/etc/passwd"), (2, "verify", "/etc", "passwd"),
            (4, "fixup", strangers), (6, "fixup", groups),
            (1, "verify", "/etc/passwd/x", "y"), (1, "verify", own, "y" * 300), (1, "verify", own, "y" * 4095),
            # Nobody can be asked; the reference that is left holds no rights.
            (0, "free"), (4, "fixup", roots), (3, "fixup", roots), (5, "fixup", admins),
            (1, "product", f"{roots}/x"), (1, "resource", f"{roots}/x", "y"),
            (0, "free"), (4, "product", f"{roots}/x"), (0, "free"), (4, "resource", f"{roots}/x", "y")):
        probe.expect(code, *call)
    expect(os.listdir(roots), [])


def with_failing_tools():
    """A tool that can't be started fails its step; the last needs one that goes away between two steps."""
    probe = Probe(PASSWORD)
    tools = "/usr/bin"

    def resource(code):
        probe.expect(code, "resource", PARENT, "Lumetra")
        shutil.rmtree(PARENT)

    rights.mount("/dev/null", f"{tools}/chown", "--bind")
    probe.expect(2, "product", "/Library/Lumetra_1")
    resource(4)
    rights.mount("/dev/null", f"{tools}/chgrp", "--bind")
    resource(2)
    rights.run("umount", f"{tools}/chgrp", f"{tools}/chown")
    Path(f"{tools}/chgrp").rename(f"{tools}/chgrp.whole")
    Path(f"{tools}/chgrp").write_text(f"#!/bin/sh\nchmod a-x {tools}/mkdir\n")
    os.chmod(f"{tools}/chgrp", 0o755)
    resource(3)
    Path(f"{tools}/chgrp.whole").rename(f"{tools}/chgrp")
    os.chmod(f"{tools}/mkdir", 0o755)
