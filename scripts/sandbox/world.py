"""A world in which the installer's own paths exist, made with bubblewrap; it changes nothing on the machine.

One folder, mounted once, is its root, so that /Library, /Volumes and the bundle's folder are on one device, as on a Mac
with one disk. The machine's /usr and /etc are mounted over it read-only, with account files that add the group `admin`
and a plain user.
"""

import os
import shutil
import subprocess
from pathlib import Path

SCRIPTS = Path(__file__).resolve().parent.parent
BUNDLE_NAME = "Lumetra Database Installer.app"
HOME = "/Users/installer"
BUNDLE_FOLDER = "/Users/Shared"
DATABASE = f"{BUNDLE_FOLDER}/Lumetra"
PREFERENCE = "/Library/Preferences/com.brindle.CorvaneLumetra.plist"
USB_DISK = "/Volumes/USB DISK"
ADMIN_GID = 80
PLAIN_UID, PLAIN_GID = 501, 20
FOLDERS = ("Library/Application Support", "Library/Preferences", "Volumes", HOME[1:], BUNDLE_FOLDER[1:], "opt")


class World:
    """One world under `root`.

    `library_size` gives /Library a disk of its own of that many bytes. `mounts` maps folders of the machine to
    read-only places in the world; each is another device to the installer.
    """

    def __init__(self, root, bundle, library_size=None, mounts=None):
        self.root = Path(root).resolve()
        self.bundle = Path(bundle).resolve()
        self.library_size = library_size
        self.mounts = dict(mounts or {})
        self.superuser = os.geteuid() == 0

    def path(self, inside):
        """The path on the machine of `inside`, a path in the world."""
        return self.root / inside.lstrip("/")

    def lay(self):
        """Removes the last world and makes the folders of a new one."""
        self.remove()
        for folder in FOLDERS:
            (self.root / folder).mkdir(parents=True)
        admin = ADMIN_GID if self.superuser else 0
        self._add_account("group", "admin", f"x:{admin}:")
        self._add_account("passwd", "installer", f"x:{PLAIN_UID}:{PLAIN_GID}:The Installer:{HOME}:/bin/sh")

    def remove(self):
        if self.root.exists():
            subprocess.run(["chmod", "-R", "u+rwX", self.root], check=True)
            shutil.rmtree(self.root)

    def command(self, *argv, writable=None, display=False):
        """The bubblewrap command that runs `argv` in the world.

        `writable` maps folders of the machine to places where `argv` may leave files; `display` lets it use the
        user's own display.
        """
        command = ["bwrap", "--die-with-parent", "--unshare-pid", "--bind", self.root, "/"]
        if not self.superuser:
            command += ["--unshare-user", "--uid", "0", "--gid", "0"]
        command += ["--ro-bind", "/usr", "/usr", "--ro-bind", "/etc", "/etc", "--proc", "/proc", "--dev", "/dev",
                    "--perms", "1777", "--tmpfs", "/tmp", "--tmpfs", "/run", "--perms", "0700", "--dir", "/run/user"]
        for kind in ("group", "passwd"):
            command += ["--ro-bind", self._account_file(kind), f"/etc/{kind}"]
        for name in ("bin", "sbin", "lib", "lib64"):
            command += ["--symlink", f"usr/{name}", f"/{name}"]
        if self.library_size:
            command += ["--size", str(self.library_size), "--tmpfs", "/Library"]
            command += ["--dir", "/Library/Application Support", "--dir", "/Library/Preferences"]
        command += ["--ro-bind", self.bundle, f"{BUNDLE_FOLDER}/{BUNDLE_NAME}"]
        command += ["--ro-bind", SCRIPTS, "/opt/scripts"]
        for place, inside in self.mounts.items():
            command += ["--ro-bind", place, inside]
        for place, inside in (writable or {}).items():
            command += ["--bind", place, inside]
        settings = environment() | {"HOME": HOME, "XDG_RUNTIME_DIR": "/run/user"}
        if display:
            settings |= {name: os.environ[name] for name in ("DISPLAY", "XAUTHORITY") if name in os.environ}
            for place in filter(None, ("/tmp/.X11-unix", os.environ.get("XAUTHORITY"))):
                command += ["--ro-bind-try", place, place]
        command.append("--clearenv")
        for name, value in settings.items():
            command += ["--setenv", name, value]
        return [str(part) for part in [*command, "--chdir", "/", "--", *argv]]

    def _account_file(self, kind):
        return self.root.with_name(f"{self.root.name}.{kind}")

    def _add_account(self, kind, name, record):
        lines = Path("/etc", kind).read_text().splitlines()
        # First, because without root the group has root's number, and the first name for a number wins.
        lines = [f"{name}:{record}", *(line for line in lines if not line.startswith(name + ":"))]
        self._account_file(kind).write_text("\n".join(lines) + "\n")


def environment():
    """The environment of programs in any world; from the machine's own it takes only the sanitizers' options."""
    kept = {name: os.environ[name] for name in os.environ if name.endswith("SAN_OPTIONS")}
    return kept | {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LANG": "C.UTF-8"}
