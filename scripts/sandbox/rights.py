"""A world with real administrator rights: the machine in namespaces of its own, in which no change lasts.

It has a system bus, polkit, a system log and two accounts, one that can administer the computer and one that can't.
"""

import os
import pty
import pwd
import socket
import subprocess
import tempfile
import termios
import threading
import time
from pathlib import Path

from .user import ON_DISPLAY, Unexpected
from .world import BUNDLE_FOLDER, BUNDLE_NAME, HOME, SCRIPTS, environment

PLAIN, ADMINISTRATOR, PASSWORD = "plain", "administrator", "correct horse"
HELPER = "authorization-helper"
CHECKOUT = "/opt/checkout"
BUNDLE = f"{BUNDLE_FOLDER}/{BUNDLE_NAME}"
ADMINISTRATOR_MAY = f"polkit.addAdminRule(function() {{ return ['unix-user:{ADMINISTRATOR}']; }});\n"
NOBODY_MAY = "polkit.addRule(function() { return polkit.Result.NO; });\n"


def missing():
    """Why no such world can be made here, or None."""
    if os.geteuid() != 0:
        return "needs root"
    trial = ("exec 2>/dev/null; mount -t tmpfs none /mnt && mkdir /mnt/u /mnt/w /mnt/r &&"
             " mount -t overlay none -o lowerdir=/,upperdir=/mnt/u,workdir=/mnt/w /mnt/r")
    return "can't mount here" if enter(["sh", "-c", trial]) else None


def enter(argv):
    """Runs `argv` in new namespaces and returns its exit status."""
    return subprocess.call(["unshare", "--mount", "--pid", "--fork", "--kill-child", *argv])


def lay(bundle, probe):
    """Makes the world, with `probe` in the bundle, and enters it. All but the checkout is on one device."""
    root = "/mnt/world"
    run("sh", "-ec", f"""
        mount -t tmpfs tmpfs /mnt
        mkdir /mnt/upper /mnt/work {root}
        mount -t overlay overlay -o lowerdir=/,upperdir=/mnt/upper,workdir=/mnt/work,xino=on {root}
        mkdir -p {root}{CHECKOUT} '{root}{BUNDLE_FOLDER}'
        mount --bind "$3" {root}{CHECKOUT}
        cd {root}
        mount -t proc proc proc
        mount -t tmpfs -o mode=755 tmpfs run
        mount -t tmpfs -o mode=1777 tmpfs tmp
        mount -t tmpfs -o mode=755 tmpfs dev
        for name in null zero full random urandom tty; do
            : >dev/$name
            mount --bind /dev/$name dev/$name
        done
        mkdir dev/pts
        mount -t devpts -o newinstance,ptmxmode=0666,mode=620 devpts dev/pts
        ln -s pts/ptmx dev/ptmx
        cp -R --preserve=mode "$1" '{root}{BUNDLE}'
        cp "$2" '{root}{BUNDLE}/Contents/MacOS/probe'""", "sh", bundle, probe, SCRIPTS.parent)
    os.chroot(root)
    os.chdir("/")
    settings = environment()
    os.environ.clear()
    os.environ |= settings


def start_user(script, *arguments, **settings):
    """Runs a script of the checkout's on a display, as the plain user."""
    command = [*ON_DISPLAY, f"{CHECKOUT}/{script}", *arguments]
    groups = os.getgrouplist(PLAIN, pwd.getpwnam(PLAIN).pw_gid)
    return subprocess.Popen(command, user=PLAIN, group=PLAIN, extra_groups=groups,
                            env=os.environ | settings | {"HOME": HOME})


class System:
    """The world's accounts and services."""

    def __init__(self, rule=ADMINISTRATOR_MAY):
        Path(HOME).parent.mkdir(exist_ok=True)
        run("useradd", "--create-home", "--home-dir", HOME, PLAIN)
        run("useradd", ADMINISTRATOR)
        run("chpasswd", input=f"{ADMINISTRATOR}:{PASSWORD}\n")
        run("groupadd", "--force", "admin")
        for folder in ("/Library/Application Support", "/Library/Preferences", "/Volumes", "/run/dbus",
                       "/etc/polkit-1/rules.d"):
            Path(folder).mkdir(parents=True, exist_ok=True)
        Path("/etc/polkit-1/rules.d/00-test.rules").write_text(rule)
        self.log = []
        self._receive_log()
        # Starts polkit when somebody first asks for it.
        run("dbus-daemon", "--system", "--fork", "--nopidfile", stderr=subprocess.DEVNULL)

    def _receive_log(self):
        inlet = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        inlet.bind("/dev/log")
        os.chmod("/dev/log", 0o666)

        def receive():
            while True:
                self.log.append(inlet.recv(65536).decode())
        threading.Thread(target=receive, daemon=True).start()


class Agent:
    """polkit's own agent for one process, on a terminal of its own, and somebody who types the password, if given.

    That somebody is another process, since this one may block while it waits for the installer's windows.
    """

    def __init__(self, process, password, as_plain=False):
        self._record = tempfile.mkstemp()[1]
        started, ready = os.pipe()
        os.set_inheritable(ready, True)
        command = ["pkttyagent", "--process", str(process), "--notify-fd", str(ready)]
        if as_plain:
            command = ["setpriv", "--reuid", PLAIN, "--regid", PLAIN, "--clear-groups", *command]
        if os.fork() == 0:
            agent, terminal = pty.fork()
            if agent == 0:
                os.execvp(command[0], command)
            # The child must not keep this process's descriptors open.
            os.dup2(terminal, 3)
            os.closerange(4, 1024)
            try:
                self._type(3, password)
            finally:
                os._exit(0)
        os.close(ready)
        # The agent closes its end once it is registered.
        os.read(started, 1)
        os.close(started)

    @property
    def said(self):
        return Path(self._record).read_text(errors="replace")

    @property
    def prompts(self):
        return self.said.count("Password: ")

    def _type(self, terminal, password):
        answered = 0
        with open(self._record, "wb", buffering=0) as record:
            while True:
                try:
                    record.write(os.read(terminal, 4096))
                except OSError:
                    return
                if self.prompts > answered and password is not None:
                    answered = self.prompts
                    # The agent throws away what is typed while the echo is still on.
                    wait(lambda: not termios.tcgetattr(terminal)[3] & termios.ECHO, "hidden input")
                    os.write(terminal, password.encode() + b"\n")


def helpers():
    """The process ids of the running helpers, and of the programs that ask for the rights to start one."""
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            if HELPER in (process / "cmdline").read_text():
                found.append(int(process.name))
        except OSError:
            pass
    return found


def wait(condition, what, limit=30):
    """Waits until the condition holds; Unexpected when it never does."""
    end = time.monotonic() + limit
    while not condition():
        if time.monotonic() > end:
            raise Unexpected(f"no {what} within {limit} s")
        time.sleep(0.01)


def mount(source, place, *options):
    run("mount", *options, source, place)


def run(*command, **options):
    subprocess.run([str(part) for part in command], check=True, text=True, **options)
