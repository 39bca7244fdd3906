"""Opens the installer in the world build/world: session.py BUNDLE [SOURCE]; scripts/run says the rest."""

import os
import plistlib
import subprocess
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).resolve().parent.parent)]

from sandbox import database
from sandbox.user import ON_DISPLAY, PROGRAM, Unexpected, User
from sandbox.world import DATABASE, PREFERENCE, World

SAMPLE_SIZE = 120_000_000
SCRIPT = "/opt/scripts/sandbox/session.py"
PICTURES = "/opt/pictures"
WHOLE_DAY = 24 * 3600


def sizes(folder):
    return {(path.name, path.stat().st_size) for path in database.data_files(folder)}


def end(world, wanted):
    """Prints what is installed; returns what is wrong, or None."""
    try:
        recorded = plistlib.loads(world.path(PREFERENCE).read_bytes())["LumetraFullDatabasePath"]
    except (OSError, KeyError, plistlib.InvalidFileException) as fault:
        return f"the database is not installed: no place is recorded ({fault})"
    print(f"\nIn {recorded}:")
    subprocess.run(["ls", "-lA", "--time-style=long-iso", world.path(recorded)], check=False)
    print(f"Recorded in {PREFERENCE}: LumetraFullDatabasePath = {recorded}")
    found = sizes(world.path(recorded))
    missing = {name for name, _ in wanted} - {name for name, _ in found}
    if missing or not found <= wanted:
        return f"the database is not whole: {sorted(missing) or sorted(found - wanted)}"
    print(f"The database is installed: {len(found)} files, {sum(size for _, size in found)} bytes.")
    return None


def open_session(bundle, source=None):
    world = World("build/world", bundle)
    print("Laying the world in build/world")
    world.lay()
    if source:
        world.mounts[source] = DATABASE
        wanted = sizes(source)
    else:
        database.make(world.path(DATABASE), SAMPLE_SIZE)
        wanted = sizes(world.path(DATABASE))
    if os.environ.get("DISPLAY"):
        print("The installer is open on your display; the result follows when it is closed.")
        status = subprocess.call(world.command(PROGRAM, display=True))
    else:
        pictures = Path("build/pictures")
        pictures.mkdir(exist_ok=True)
        for old in pictures.glob("*.png"):
            old.unlink()
        status = subprocess.call(world.command(*ON_DISPLAY, "/usr/bin/python3", SCRIPT,
                                               writable={pictures.resolve(): PICTURES}))
        print("Pictures of the pages are in build/pictures.")
    fault = f"the installer ended with status {status}" if status else end(world, wanted)
    if fault:
        print(f"run: {fault}", file=sys.stderr)
    return 1 if fault else 0


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


def walk_inside():
    user = User(PICTURES)
    try:
        return walk(user)
    except Unexpected as fault:
        print(f"run: {fault}", file=sys.stderr)
        return 1
    finally:
        print(user.errors(), end="", file=sys.stderr)
        user.close()


if __name__ == "__main__":
    sys.stdout.reconfigure(line_buffering=True)
    sys.exit(open_session(*sys.argv[1:]) if len(sys.argv) > 1 else walk_inside())
