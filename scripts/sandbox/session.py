"""Opens the installer in the world build/world: session.py BUNDLE PICTURES [SOURCE]; scripts/run says the rest."""

import os
import plistlib
import subprocess
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).resolve().parent.parent)]

from sandbox import database
from sandbox.user import ON_DISPLAY, PROGRAM, Unexpected, go
from sandbox.world import DATABASE, PREFERENCE, World

SAMPLE_SIZE = 120_000_000
SCRIPT = "/opt/scripts/sandbox/session.py"
PICTURES_INSIDE = "/opt/pictures"
WHOLE_DAY = 24 * 3600


def sizes(folder):
    return {(path.name, path.stat().st_size) for path in database.data_files(folder)}


def show_end(world, wanted):
    """Prints what is installed; Unexpected when that isn't the whole database."""
    try:
        recorded = plistlib.loads(world.path(PREFERENCE).read_bytes())["LumetraFullDatabasePath"]
    except (OSError, KeyError, plistlib.InvalidFileException) as fault:
        raise Unexpected(f"the database is not installed: no place is recorded ({fault})") from None
    print(f"\nIn {recorded}:")
    subprocess.run(["ls", "-lA", "--time-style=long-iso", world.path(recorded)], check=False)
    print(f"Recorded in {PREFERENCE}: LumetraFullDatabasePath = {recorded}")
    found = sizes(world.path(recorded))
    missing = {name for name, _ in wanted} - {name for name, _ in found}
    if missing or not found <= wanted:
        raise Unexpected(f"the database is not complete: {sorted(missing) or sorted(found - wanted)}")
    print(f"The database is installed: {len(found)} files, {sum(size for _, size in found)} bytes.")


def open_session(bundle, pictures, source=None):
    world = World("build/world", bundle)
    print("Setting up the sandbox in build/world")
    world.lay()
    if source:
        world.mounts[source] = DATABASE
    else:
        source = world.path(DATABASE)
        database.make(source, SAMPLE_SIZE)
    # Before the installation, which may move the files.
    wanted = sizes(source)
    if os.environ.get("DISPLAY"):
        print("The installer is open on your display; the result follows when you close it.")
        status = subprocess.call(world.command(PROGRAM, display=True))
    else:
        pictures = Path(pictures).resolve()
        pictures.mkdir(exist_ok=True)
        for old in pictures.glob("*.png"):
            old.unlink()
        user = world.command(*ON_DISPLAY, "/usr/bin/python3", SCRIPT, writable={pictures: PICTURES_INSIDE})
        status = subprocess.call(user)
        print(f"Pictures of the pages are in {pictures}.")
    if status:
        raise Unexpected(f"the installer ended with status {status}")
    show_end(world, wanted)


def begun(user):
    bar = user.find("progress bar", "Files installed")
    return bar is not None and bar.queryValue().currentValue > 0


def walk(user):
    """Goes through all pages as the scripted user."""
    def see(name):
        user.picture(name)
        user.say(f"[{name}]", *user.texts())

    user.wait_title("Welcome to the Corvane Lumetra Database Installer")
    see("1-agreement")
    user.click("check box", "I accept the terms in the License Agreement")
    user.press("Continue")
    user.wait(lambda: any("approximately" in text for text in user.texts()), "size of the database", WHOLE_DAY)
    see("2-source")
    user.press("Continue")
    user.wait_title("Select Database location")
    see("3-destination")
    user.press("Continue")
    user.wait_title("Installing Database")
    user.wait(lambda: begun(user) or user.title() != "Installing Database", "first file", WHOLE_DAY)
    see("4-installation")
    user.wait(lambda: user.box() or user.title() != "Installing Database", "outcome", WHOLE_DAY)
    if user.box():
        user.answer_box()
        user.wait(lambda: user.title() != "Installing Database", "outcome")
    see("5-outcome")
    user.press("Done")
    return user.program.wait(60)


if __name__ == "__main__":
    sys.stdout.reconfigure(line_buffering=True)
    try:
        sys.exit(open_session(*sys.argv[1:]) if len(sys.argv) > 1 else go(walk, PICTURES_INSIDE))
    except Unexpected as fault:
        sys.exit(f"run: {fault}")
