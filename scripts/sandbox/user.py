"""A scripted user of the installer: an assistive-technology client that finds things as a screen reader does.

Runs on a display of its own (ON_DISPLAY) in a world (world.py), and knows only roles, names and texts, nothing of the
code.
"""

import os
import signal
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

from .world import BUNDLE_FOLDER, BUNDLE_NAME

PROGRAM = f"{BUNDLE_FOLDER}/{BUNDLE_NAME}/Contents/MacOS/Lumetra Database Installer"
BOX_TITLE = "Lumetra Database Installer Install"
LIMIT = 60
# Runs the command that follows on a virtual display, with a session bus.
ON_DISPLAY = ("xvfb-run", "-a", "-s", "-screen 0 1024x768x24 -dpi 96 -noreset", "dbus-run-session", "--")


class Unexpected(Exception):
    """What the user waited for didn't come; the text says what was there instead."""


class User:
    """Starts the installer and works it."""

    def __init__(self, pictures=None):
        self.pictures = pictures
        environment = os.environ | {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        # New files closed to others, as careful users set it.
        self.program = subprocess.Popen([PROGRAM], env=environment, stderr=open("/tmp/stderr", "w"), umask=0o077,
                                        preexec_fn=_start_carelessly)
        # Qt joins only an accessibility bus that starts after it does, so its window must show first.
        self.wait(_display_windows, "a window")
        global pyatspi
        import pyatspi
        self.wait(lambda: self.frame() is not None, "the window on the accessibility bus")

    def close(self):
        self.program.kill()
        self.program.wait()

    def errors(self):
        """What the installer has written to standard error so far."""
        with open("/tmp/stderr") as lines:
            return lines.read()

    # Looking

    def windows(self):
        """The installer's visible top-level windows, the newest last."""
        while GLib.MainContext.default().iteration(False):
            pass
        desktop = pyatspi.Registry.getDesktop(0)
        desktop.clear_cache()
        found = []
        for application in desktop:
            if application and application.get_process_id() == self.program.pid:
                application.set_cache_mask(Atspi.Cache.NONE)
                found += [window for window in application if _is(window, pyatspi.STATE_SHOWING)]
        return found

    def frame(self):
        """The wizard's window, or None."""
        return next((window for window in self.windows() if window.name != BOX_TITLE), None)

    def box(self):
        """The visible message box, or None."""
        return self.dialog(BOX_TITLE)

    def dialog(self, caption):
        """The visible folder dialog, or None."""
        return next((window for window in self.windows() if window.name == caption), None)

    def find(self, role, name=None, within=None):
        """The first visible control with the role and the name, or None."""
        return next(self._all(role, name, within), None)

    def texts(self, within=None):
        """The texts of the visible labels, from top to bottom."""
        labels = [label for label in self._all("label", None, within) if label.name]
        return [label.name for label in sorted(labels, key=lambda label: _box(label)[1])]

    def title(self):
        return (self.texts() or [""])[0]

    def say(self, *texts):
        print("  ".join(" ".join(text.split()) for text in texts), flush=True)

    def content(self, name):
        """The whole text of the visible document with the name."""
        return self.find("label", name).queryText().getText(0, -1)

    def enabled(self, name, role="push button"):
        return _is(self.find(role, name), pyatspi.STATE_SENSITIVE)

    def wait(self, condition, what, limit=LIMIT):
        """Waits until the condition holds and returns its value; Unexpected when it never does."""
        end = time.monotonic() + limit
        while True:
            try:
                value = condition()
            except (OSError, RuntimeError, GLib.Error):
                value = None
            if value:
                return value
            if self.program.poll() is not None:
                raise Unexpected(f"the installer ended with status {self.program.returncode} before {what}:"
                                 f" {self.errors()}")
            if time.monotonic() > end:
                raise Unexpected(f"no {what} within {limit} s; the window shows {self.texts()}")
            time.sleep(0.05)

    def wait_text(self, text):
        """Waits until a label shows exactly this text."""
        self.wait(lambda: text in self.texts(), f"text {text!r}")

    def wait_title(self, title):
        self.wait(lambda: self.title() == title, f"page {title!r}")

    # Doing

    def press(self, name, within=None):
        """Presses a button as soon as it is enabled."""
        self._ready("push button", name, within).queryAction().doAction(0)

    def toggle(self, name):
        """Ticks a check box, or clears it, as a screen reader does."""
        self._ready("check box", name).queryAction().doAction(0)

    def type(self, key):
        """Presses a key in the uppermost window, as there is no window manager to focus it."""
        def typed():
            focus = ["xdotool", "windowfocus", "--sync", *_display_windows()[-1:]]
            return subprocess.run([*focus, "key", key], check=False).returncode == 0
        # Fails while a window closes.
        self.wait(typed, f"window for {key}")

    def focus(self, role, name):
        """Goes to a control with the Tab key alone."""
        for _ in range(10):
            self.type("Tab")
            try:
                return self.wait(lambda: self.focused(role, name), "focus", limit=1)
            except Unexpected:
                pass
        raise Unexpected(f"Tab doesn't reach {name!r}")

    def wait_focus(self, role, name):
        self.wait(lambda: self.focused(role, name), f"focus on {name!r}")

    def focused(self, role, name):
        return _is(self.find(role, name), pyatspi.STATE_FOCUSED)

    def click(self, role, name, event="b1c"):
        """Clicks a control with the mouse, or generates another mouse event on it."""
        left, top, width, height = _box(self._ready(role, name))
        pyatspi.Registry.generateMouseEvent(left + height // 2, top + height // 2, event)

    def answer_box(self, name="OK"):
        """Waits for a message box, presses the button and returns the box's texts."""
        box = self.wait(self.box, "message box")
        texts = self.wait(lambda: self.texts(box), "message text")
        self.picture("prompt")
        self.say(f"[{box.name}]", *texts, f"-> {name}")
        self.press(name, within=self.box)
        self.wait(lambda: self.box() is None or self.texts(self.box()) != texts, "end of the message box")
        return texts

    def pick_folder(self, caption, folder):
        """Types the folder into the folder dialog and accepts it."""
        field = self.wait(lambda: self.find("text", None, self.wait(lambda: self.dialog(caption), caption)),
                          "field for the folder")
        field.queryEditableText().setTextContents(folder)
        self.press("Choose", within=lambda: self.dialog(caption))
        self.wait(lambda: self.dialog(caption) is None, "end of the folder dialog")
        self.type("Shift_L")  # gives the wizard the focus again, as there is no window manager

    def picture(self, name):
        """Saves a picture of the installer's windows, when pictures are wanted."""
        if self.pictures:
            subprocess.run(["import", "-window", "root", "-trim", f"{self.pictures}/{name}.png"], check=True)

    def _ready(self, role, name, within=None):
        def ready():
            control = self.find(role, name, within() if within else None)
            return control if _is(control, pyatspi.STATE_SENSITIVE) else None
        return self.wait(ready, f"{name!r} to press")

    def _all(self, role, name, within):
        within = within or self.frame()
        if within is None:
            return
        for child in within:
            if _is(child, pyatspi.STATE_SHOWING):
                if child.getRoleName() == role and (name is None or child.name == name):
                    yield child
                yield from self._all(role, name, child)


def go(steps, pictures=None):
    """Starts the installer and takes the steps; then says what it wrote to standard error."""
    user = User(pictures)
    try:
        return steps(user)
    finally:
        print(user.errors(), end="", file=sys.stderr, flush=True)
        user.close()


def _start_carelessly():
    os.close(0)
    signal.signal(signal.SIGCHLD, signal.SIG_IGN)
    signal.pthread_sigmask(signal.SIG_BLOCK, signal.valid_signals())


def _is(item, state):
    return item is not None and item.getState().contains(state)


def _box(item):
    area = item.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return area.x, area.y, area.width, area.height


def _display_windows():
    """The windows on the display, the uppermost last."""
    search = ["xdotool", "search", "--onlyvisible", "--name", "."]
    return subprocess.run(search, stdout=subprocess.PIPE, text=True, check=False).stdout.split()
