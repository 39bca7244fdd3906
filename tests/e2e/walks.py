"""What a user sees and gets, told as walks through the program from its first page to its end."""

import os
import plistlib
import pwd
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
SIZE = ("This Installer will copy or move the Corvane Lumetra Database from the source folders to your hard disk.\n\n"
        "The databases will occupy approximately {} GB  of additional disk space.")
FOUND = SIZE.replace("the source folders", '"{}"')
SEARCH = '\nPlease press "Find data files" to locate the "Lumetra" database source files folder.'
NOT_FOUND = "The Lumetra database source folder was not found." + SEARCH
NO_FILES = "No Lumetra database files were found in {}." + SEARCH
STORED_IN = ("The database will be stored in\n\n{}\n\n"
             "Click \"Continue\" to install here, or \"Choose\" to select another location.")
FIND = "Find data files.."
FIND_DIALOG = "Select Database directory"
NO_ROOM = ("The selected disk does not have enough free space to store the database ({} additional needed)."
           " Please select another location.")
ON_USB_DISK = f"{USB_DISK}/Lumetra"
LOG = f"{HOME}/installer.log"
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
NOT_WRITABLE = [NO_ACCESS[0],
                "Lumetra Database Installer was not able to write the database to the selected location."]


@dataclass
class Walk:
    """A walk and the world it needs, with `size` bytes of sample database."""

    steps: Callable
    size: int
    source: str = DATABASE
    sparse: bool = False
    library_size: Optional[int] = None


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
    user.press("Go Back")
    user.wait_text(TERMS)
    user.press("Continue")


def see_destination(user, path=DEFAULT):
    user.wait_text(STORED_IN.format(path))
    expect(user.title(), "Select Database location")


def to_destination(user, gigabytes="0.01"):
    accept_agreement(user)
    user.wait_text(SIZE.format(gigabytes))
    expect(user.title(), WELCOME)
    user.click("push button", "Continue", "b1d")  # a double click goes on by one page only
    see_destination(user)


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
    user.wait(user.box, "message box")
    # While the prompt stands the bar still shows, full, and the installation isn't yet done.
    bar = user.find("progress bar", "Files installed").queryValue()
    expect((bar.currentValue, bar.maximumValue), (database.FILES, database.FILES))
    expect((user.enabled("Cancel"), user.enabled("Done")), (False, False))
    expect(user.answer_box(), [TO_SHARE])
    see_end(user, READY)


def owner(path):
    status = os.stat(path)
    return pwd.getpwuid(status.st_uid).pw_name, Path(path).group(), stat.S_IMODE(status.st_mode)


def check_installed(content, path=DEFAULT):
    expect(database.content(path), content)
    expect([entry.name for entry in Path(path).iterdir() if entry.is_dir()], [])
    expect(plistlib.loads(Path(PREFERENCE).read_bytes()), {"LumetraFullDatabasePath": path})
    if path == DEFAULT:
        expect((owner(path), owner(Path(path).parent)), (("root", "admin", 0o775), ("root", "admin", 0o775)))
    else:
        expect(owner(path)[2], 0o755)


def whole_way(user, subtitle, gigabytes, source=DATABASE):
    """From the agreement to the end, whereafter the default destination holds the content that is returned."""
    content = database.content(source)
    to_destination(user, gigabytes)
    install(user, subtitle)
    check_installed(content)
    return content


def move(user):
    whole_way(user, MOVING, "1.23")
    expect(list(database.data_files(DATABASE)), [])
    expect([name for name in database.DECOYS if not Path(DATABASE, name).exists()], [])
    check_log(user)


def copy(user):
    content = whole_way(user, COPYING, "0.03", ON_USB_DISK)
    expect(database.content(ON_USB_DISK), content)


def keyboard(user):
    content = database.content(DATABASE)
    expect(os.readlink(f"/proc/{user.program.pid}/fd/0"), "/dev/null")
    user.focus("label", AGREEMENT)
    user.type("End")
    user.wait(lambda: user.find("scroll bar").queryValue().currentValue > 0, "agreement scrolled")
    user.focus("check box", ACCEPT)
    user.type("space")
    user.wait(lambda: user.enabled("Continue"), "agreement accepted")
    user.type("Return")
    user.wait_text(SIZE.format("0.01"))
    user.wait_focus("panel", WELCOME)
    # Nothing that doesn't show may feel a key: neither the box that was just ticked, nor the button Choose...
    user.type("space")
    user.type("Return")
    user.wait_text(STORED_IN.format(DEFAULT))
    user.wait_focus("panel", "Select Database location")
    for name in ("Choose...", "Go Back", "Continue", "Cancel", "Choose..."):
        user.type("Tab")
        user.wait_focus("push button", name)
    # The button that has the focus is the one that Return presses.
    user.type("Return")
    user.wait(lambda: user.dialog("Select Database destination"), "folder dialog")
    user.type("Escape")
    user.focus("push button", "Continue")
    user.type("Return")
    user.wait_focus("panel", "Installing Database")
    user.type("space")
    user.wait(user.box, "message box")
    expect(len(user.windows()), 2)
    user.type("Return")
    user.wait_title(READY[0])
    user.type("Return")
    expect(user.program.wait(60), 0)
    check_installed(content)


def find_source(user):
    """A folder that holds the database is found past one that doesn't, mostly with the keys."""
    name = "R&D %1 %2 é " + 200 * "W"
    database.make(Path(HOME, name), 9_000_000)
    content = database.content(Path(HOME, name))
    Path(HOME, name, "R&D %1").mkdir()
    user.focus("check box", ACCEPT)
    user.type("space")
    user.type("Return")
    texts = {None: NOT_FOUND, f"{name}/R&D %1": NO_FILES.format("R&D %1"), name: FOUND.format(name, "0.01")}
    for folder, text in texts.items():
        if folder:
            user.focus("push button", FIND)
            user.type("Return")
            user.wait(lambda: user.dialog(FIND_DIALOG), "folder dialog")
            user.type("Escape")
            user.wait_text("Scanning...")
            user.press(FIND)
            user.wait(lambda: user.dialog(FIND_DIALOG), "folder dialog")
            user.press(FIND)  # only a screen reader reaches it beneath the dialog
            user.pick_folder(FIND_DIALOG, f"{HOME}/{folder}")
        user.wait_text(text)
        user.wait_focus("panel", WELCOME)
        expect(user.find("panel", WELCOME).description, text)
    expect(user.find("push button", FIND), None)
    user.type("Return")
    see_destination(user)
    install(user, MOVING)
    check_installed(content)


def no_room(user):
    content = database.content(DATABASE)
    to_destination(user, "1.25")
    user.press("Continue")
    user.wait_text(NO_ROOM.format("1.00 GB"))
    expect(user.title(), "Select Database location")
    pick_destination(user, HOME, f"{HOME}/Lumetra")
    install(user, MOVING)
    check_installed(content, f"{HOME}/Lumetra")


def check_log(user):
    lines = Path(LOG).read_text().splitlines()
    tag = f"[LumetraDatabaseInstaller {user.program.pid}]"
    expect([line for line in lines if not line.startswith((tag, "    "))], ["an earlier line"])
    messages = [line.partition(": ")[2] for line in lines]
    expect(messages[2], 'Effective UID is root "root"(0)')
    expect(f"createProductDirectory: made dir {DEFAULT} w/o needing privs, checking for fixup" in messages, True)


def switch_log_on():
    Path(LOG).write_text("an earlier line\n")
    preferences = Path(HOME, "Library/Preferences")
    preferences.mkdir(parents=True)
    switch = {"LumetraDatabaseInstaller_LogLocation": LOG}
    (preferences / "com.brindle.Corvane.plist").write_bytes(plistlib.dumps(switch))


WALKS = {
    "move": Walk(move, 1_234_567_890, sparse=True),
    "copy": Walk(copy, 30_000_000, ON_USB_DISK),
    "find_source": Walk(find_source, 0),
    "no_room": Walk(no_room, 1_250_000_000, sparse=True, library_size=100_000_000),
    "keyboard": Walk(keyboard, 9_000_000),
}
