"""What a user sees and gets, told as walks through the program from its first page to its end."""

import grp
import os
import plistlib
import re
import stat
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Optional

from sandbox import database
from sandbox.user import Unexpected
from sandbox.world import DATABASE, HOME, PREFERENCE, USB_DISK

WELCOME = "Welcome to the Corvane Lumetra Database Installer"
AGREEMENT = "License Agreement"
TERMS = ("If you accept the terms of the agreement, click the check box below.  You must accept the agreement to"
         " install the Corvane Lumetra Database.")
ACCEPT = "I accept the terms in the License Agreement"
NOT_FOUND = ("The Lumetra database source folder was not found.\nPlease press \"Find data files\" to locate the"
             " \"Lumetra\" database source files folder.")
NO_FILES = ("No Lumetra database files were found in {}.\nPlease press \"Find data files\" to locate the"
            " \"Lumetra\" database source files folder.")
SIZE = ("This Installer will copy or move the Corvane Lumetra Database from {} to your hard disk.\n\n"
        "The databases will occupy approximately {} GB  of additional disk space.")
STORED_IN = ("The database will be stored in\n\n{}\n\n"
             "Click \"Continue\" to install here, or \"Choose\" to select another location.")
NO_ROOM = ("The selected disk does not have enough free space to store the database ({} additional needed)."
           " Please select another location.")
DEFAULT = "/Library/Application Support/Brindlewerks/Lumetra"
MOVING = "Moving database files."
COPYING = "Installing database. (This will take 2-3 minutes.)"
REASON = ("Lumetra Database Installer needs to enable privileges to {}.\n\nYou will be asked to provide the name and"
          " password of a user that has administrative capabilities for this computer.")
TO_INSTALL = REASON.format("install the database in the selected location")
TO_SHARE = REASON.format("make the database readable for all users")
NOTICE = ("Lumetra Database Installer must be installed by a user who is allowed to administer this computer (your"
          " account does not have this capability).\n\nFor the Name/password prompts that follow, you will need to"
          " supply the name and and password of ANOTHER user with admistrator privileges. ")
READY = ["Database Installed", "The Corvane Lumetra Database is now ready for use."]
NO_ACCESS = ["Database was not installed", "Lumetra Database Installer was not able to access the selected location."]


@dataclass
class Walk:
    """A walk and the world it needs; `size` bytes of sample database lie in `source` or on the USB disk."""

    steps: Callable
    size: int
    source: str = DATABASE
    sparse: bool = False
    on_usb_disk: bool = False
    library_size: Optional[int] = None
    member: bool = True
    log_file: Optional[str] = None


def expect(actual, wanted):
    if isinstance(actual, dict) and isinstance(wanted, dict):
        actual, wanted = dict(actual.items() - wanted.items()), dict(wanted.items() - actual.items())
    if actual != wanted:
        raise Unexpected(f"expected {wanted!r}, not {actual!r}")


def accept_agreement(user):
    expect(user.texts(), [WELCOME, AGREEMENT, TERMS])
    expect("Brindlewerks" in user.content(AGREEMENT), True)
    expect(user.enabled("Continue"), False)
    for accepted in (True, False, True):
        user.toggle(ACCEPT)
        user.wait(lambda: user.enabled("Continue") == accepted, f"agreement accepted: {accepted}")
    user.press("Continue")


def see_size(user, gigabytes, source="the source folders"):
    user.wait_text(SIZE.format(source, gigabytes))
    expect(user.title(), WELCOME)
    user.press("Continue")


def see_destination(user, path=DEFAULT):
    user.wait_text(STORED_IN.format(path))
    expect(user.title(), "Select Database location")


def pick_destination(user, folder, path):
    user.press("Choose...")
    user.pick_folder("Select Database destination", folder)
    see_destination(user, path)


def see_end(user, texts):
    """The outcome, with nothing left to press but the button that ends the program."""
    user.wait_title(texts[0])
    expect(user.texts(), texts)
    expect((user.enabled("Go Back"), user.enabled("Cancel")), (False, False))
    user.press("Done")
    expect(user.program.wait(60), 0)


def install(user, subtitle):
    """Presses Continue on the destination page; one prompt follows, after the files, and then the end."""
    user.press("Continue")
    user.wait_text(subtitle)
    expect(user.title(), "Installing Database")
    expect((user.enabled("Go Back"), user.enabled("Done")), (False, False))
    see_progress(user)
    expect(user.answer_box(), [TO_SHARE])
    see_end(user, READY)


def see_progress(user):
    """While the prompt stands the bar still shows, full, and the installation isn't yet done."""
    user.wait(user.box, "message box")
    bar = user.find("progress bar", "Files installed").queryValue()
    expect((bar.currentValue, bar.maximumValue), (database.FILES, database.FILES))
    expect((user.enabled("Cancel"), user.enabled("Done")), (False, False))


def check_installed(content, path=DEFAULT, mode=0o775):
    expect(database.content(path), content)
    expect([entry.name for entry in Path(path).iterdir() if entry.is_dir()], [])
    expect(stat.S_IMODE(os.stat(path).st_mode), mode)
    expect(plistlib.loads(Path(PREFERENCE).read_bytes()), {"LumetraFullDatabasePath": path})


def check_shared(path=DEFAULT):
    admin = grp.getgrnam("admin").gr_gid
    for folder in (Path(path), Path(path).parent):
        expect((stat.S_IMODE(folder.stat().st_mode), folder.stat().st_gid), (0o775, admin))


def move(user):
    content = database.content(DATABASE)
    accept_agreement(user)
    see_size(user, "1.23")
    see_destination(user)
    install(user, MOVING)
    check_installed(content)
    check_shared()
    expect(list(database.data_files(DATABASE)), [])
    expect([name for name in database.DECOYS if not Path(DATABASE, name).exists()], [])


def keyboard(user):
    content = database.content(DATABASE)
    user.focus("label", AGREEMENT)
    user.type("End")
    user.wait(lambda: user.find("scroll bar").queryValue().currentValue > 0, "agreement scrolled")
    user.focus("check box", ACCEPT)
    user.type("space")
    user.wait(lambda: user.enabled("Continue"), "agreement accepted")
    user.type("Return")
    user.wait_text(SIZE.format("the source folders", "0.01"))
    user.wait_focus("filler", WELCOME)
    # Nothing that doesn't show may feel a key: neither the box that was just ticked, nor the button Choose...
    user.type("space")
    user.type("Return")
    user.wait_text(STORED_IN.format(DEFAULT))
    user.wait_focus("filler", "Select Database location")
    for name in ("Choose...", "Go Back", "Continue", "Cancel", "Choose..."):
        user.type("Tab")
        user.wait_focus("push button", name)
    user.type("Return")
    user.wait_focus("filler", "Installing Database")
    user.type("space")
    user.wait(user.box, "message box")
    expect(len(user.windows()), 2)
    user.type("Return")
    user.wait_title(READY[0])
    user.type("Return")
    expect(user.program.wait(60), 0)
    check_installed(content)


def copy(user):
    content = database.content(DATABASE)
    accept_agreement(user)
    user.press("Go Back")
    user.wait_text(TERMS)
    user.press("Continue")
    see_size(user, "0.03")
    see_destination(user)
    install(user, COPYING)
    check_installed(content)
    check_shared()
    expect(database.content(DATABASE), content)


def usb_disk(user):
    content = database.content(USB_DISK)
    accept_agreement(user)
    see_size(user, "0.01")
    see_destination(user)
    install(user, COPYING)
    check_installed(content)


def no_room(user):
    content = database.content(DATABASE)
    accept_agreement(user)
    see_size(user, "1.25")
    see_destination(user)
    user.press("Continue")
    user.wait_text(NO_ROOM.format("1.00 GB"))
    expect(user.title(), "Select Database location")
    pick_destination(user, HOME, f"{HOME}/Lumetra")
    install(user, MOVING)
    check_installed(content, f"{HOME}/Lumetra", 0o755)


def picked_folders(user):
    """Neither default source exists, and the picked destination holds a Lumetra already."""
    content = database.content(f"{HOME}/R&D Data")
    Path(HOME, "Nothing").mkdir()
    Path(HOME, "Lumetra").mkdir()
    accept_agreement(user)
    user.wait_text(NOT_FOUND)
    expect(user.enabled("Continue"), False)
    for folder in ("Nothing", "R&D Data"):
        user.press("Find data files..")
        user.pick_folder("Select Database directory", f"{HOME}/{folder}")
        if folder == "Nothing":
            user.wait_text(NO_FILES.format(folder))
            expect(user.enabled("Continue"), False)
    see_size(user, "0.01", "\"R&D Data\"")
    see_destination(user)
    pick_destination(user, HOME, f"{HOME}/Lumetra_0")
    install(user, MOVING)
    check_installed(content, f"{HOME}/Lumetra_0", 0o755)


def denied(user):
    """No one can be asked for a password in this world, so the rights are refused after both boxes."""
    content = database.content(DATABASE)
    accept_agreement(user)
    see_size(user, "0.01")
    see_destination(user)
    user.press("Continue")
    expect(user.answer_box("Continue"), [NOTICE])
    expect(user.answer_box(), [TO_INSTALL])
    see_end(user, NO_ACCESS)
    expect(database.content(DATABASE), content)
    expect(Path(PREFERENCE).exists(), False)
    expect(list(Path("/tmp").glob("zq_computecontrol.*")), [])


def log(user):
    accept_agreement(user)
    see_size(user, "0.01")
    see_destination(user)
    install(user, MOVING)
    lines = Path(WALKS["log"].log_file).read_text().splitlines()
    expect(lines[0], "an earlier line")
    form = re.compile(r"\[LumetraDatabaseInstaller (\d+)\]\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}: (.+)")
    found = [form.fullmatch(line) for line in lines[1:]]
    expect([line for line, match in zip(lines[1:], found) if not match and not line.startswith("    ")], [])
    pid = str(user.program.pid)
    expect({match[1] for match in found if match}, {pid})
    messages = [match[2] for match in found if match]
    expect(messages[0], f"---LumetraDatabaseInstaller[{pid}] started---")
    expect(messages[1], "Effective UID is root \"root\"(0)")
    expect(f"createProductDirectory: made dir {DEFAULT} w/o needing privs, checking for fixup" in messages, True)


def switch_log_on(log_file):
    Path(log_file).write_text("an earlier line\n")
    preferences = Path(HOME, "Library/Preferences")
    preferences.mkdir(parents=True)
    switch = {"LumetraDatabaseInstaller_LogLocation": log_file}
    (preferences / "com.brindle.Corvane.plist").write_bytes(plistlib.dumps(switch))


WALKS = {
    "move": Walk(move, 1_234_567_890, sparse=True),
    "copy": Walk(copy, 30_000_000, library_size=100_000_000),
    "usb_disk": Walk(usb_disk, 9_000_000, on_usb_disk=True),
    "no_room": Walk(no_room, 1_250_000_000, sparse=True, library_size=100_000_000),
    "picked_folders": Walk(picked_folders, 9_000_000, source=f"{HOME}/R&D Data"),
    "denied": Walk(denied, 9_000_000, member=False),
    "keyboard": Walk(keyboard, 9_000_000),
    "log": Walk(log, 9_000_000, log_file=f"{HOME}/installer.log"),
}
