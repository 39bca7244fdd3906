"""What a plain user sees, gets and leaves behind when an administrator's password is really asked for."""

import os
import plistlib
import pwd
import signal
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

import walks
from sandbox import database, rights
from sandbox.rights import Agent, BUNDLE, CHECKOUT, PASSWORD, PLAIN
from sandbox.world import DATABASE, HOME, PREFERENCE
from walks import DEFAULT, NO_ACCESS, NOT_WRITABLE, NOTICE, READY, TO_INSTALL, TO_SHARE, expect, owner

SENTENCE = "Corvane '14 needs to configure itself to run on your system."
TO_PROMPT = [("Continue", NOTICE), ("OK", TO_INSTALL)]
TO_SHARING_PROMPT = [("Continue", NOTICE), ("OK", TO_SHARE)]
CANCELLED = [("Cancel Installation", NOTICE)]
PARENT = os.path.dirname(DEFAULT)
SPRUNG = "/tmp/a trap was sprung"


def nothing(*_):
    pass


@dataclass
class Case:
    """The plain user's steps, and what the superuser does before, meanwhile and after; `files` are in the sample
    database, and `rule` tells polkit who may do what."""

    steps: Callable
    before: Callable = nothing
    after: Callable = nothing
    meanwhile: Callable = nothing
    files: int = 40
    rule: str = rights.ADMINISTRATOR_MAY


def lay_traps():
    """A folder of programs that take the names of those that are run with rights, for the head of the PATH."""
    traps = Path("/tmp/traps")
    traps.mkdir()
    for name in ("pkexec", "mkdir", "chgrp", "chown", "chmod", "defaults", rights.HELPER):
        (traps / name).write_text(f"#!/bin/sh\n: >'{SPRUNG}'\n")
        (traps / name).chmod(0o755)
    return traps


def check(case, system):
    case.after(system)
    expect([Path(SPRUNG).exists(), *Path("/tmp").glob("zq_computecontrol.*")], [False])


def to_prompt(user, boxes=TO_PROMPT, folder=None):
    walks.to_destination(user)
    if folder:
        walks.pick_destination(user, folder, f"{folder}/Lumetra")
    user.press("Continue")
    answer(user, boxes)


def answer(user, boxes):
    for button, text in boxes:
        expect(user.answer_box(button), [text])


def attended(boxes=TO_PROMPT, end=READY, prompts=1, folder=None, password=PASSWORD, asked="", said=(), then=nothing):
    """All the way, with somebody who types the password, if there is one. The user does `then` after the first prompt;
    `said` are on standard error at the end."""
    def steps(user):
        agent = Agent(user.program.pid, password) if password else None
        to_prompt(user, boxes, folder)
        then(user)
        user.wait_title(end[0])
        helpers_end()
        walks.see_end(user, end)
        if agent:
            expect((agent.prompts, asked in agent.said, bool(agent.said)), (prompts, True, prompts > 0))
        expect([text for text in said if text not in user.errors()], [])
    return steps


def helpers_end():
    rights.wait(lambda: not rights.helpers(), "end of the helper", limit=1)


# Rights that are granted

def copy(between=nothing, folder=None, is_member=False, said=()):
    """`between` is done while the second notice stands; a member of the group admin isn't told to ask another."""
    def share(user):
        user.wait(user.box, "message box")
        expect(rights.helpers(), [])
        between()
        answer(user, TO_SHARING_PROMPT[is_member:])
    return attended(TO_PROMPT[is_member:], prompts=2, folder=folder, said=said, then=share)


def installed(_, path=DEFAULT):
    expect(len(list(database.data_files(path))), 40)
    expect(plistlib.loads(Path(PREFERENCE).read_bytes()), {"LumetraFullDatabasePath": path})
    helpers_end()


def shared(system):
    installed(system)
    expect((owner(PARENT), owner(DEFAULT)), (("root", "admin", 0o775), (PLAIN, "admin", 0o775)))


def installed_for_all(system):
    shared(system)
    authpriv_notice = "<85>"
    asking = f"user {pwd.getpwnam(PLAIN).pw_uid} runs "
    runs = [line.partition(asking)[2] for line in system.log if asking in line and line.startswith(authpriv_notice)]
    expect([run.split()[0] for run in runs],
           ["/bin/mkdir", "/usr/bin/chgrp", "/bin/mkdir", "/usr/sbin/chown", "/usr/bin/defaults", "/bin/chmod"])
    expect(runs[-1], f"/bin/chmod '{DEFAULT}' '0775'")


def installed_for_own_group(system):
    installed(system)
    expect((owner(PARENT), owner(DEFAULT)), (("root", "root", 0o775), (PLAIN, "root", 0o775)))
    expect([line for line in system.log if "was refused" in line], [])


def install_policy():
    name = "com.brindle.lumetra-installer.policy"
    policy = Path(CHECKOUT, "packaging", f"{name}.in").read_text()
    helper = f"{BUNDLE}/Contents/Helpers/{rights.HELPER}"
    Path("/usr/share/polkit-1/actions", name).write_text(policy.replace("@AUTHORIZATION_HELPER@", helper))


def small_library():
    rights.mount("tmpfs", "/Library", "-t", "tmpfs")
    for folder in ("Application Support", "Preferences"):
        Path("/Library", folder).mkdir()


# What others lay in the folders' places

DISC = "/Volumes/Disc"
PICKED = f"{DISC}/picked"
SECRET = "/opt/secret"
MISLED = f"'{PICKED}/Lumetra' '0775'", "fixupPrivileges: Unable to revert permission on directory"


def disc_with_own_folder():
    """The folder is the user's own, but nobody may write to it, so that rights are needed."""
    rights.mount("tmpfs", folder(DISC), "-t", "tmpfs")
    folder(PICKED, PLAIN, PLAIN)
    rights.run("chown", PLAIN, DISC)
    os.chmod(PICKED, 0o555)
    os.chmod(folder(f"{SECRET}/Lumetra"), 0o700)


def disc_of_group():
    """What is made on it gets the disc's group, not root's."""
    rights.mount("tmpfs", folder(DISC), "-t", "tmpfs", "-o", "mode=2755,gid=staff")


def library_of_members():
    small_library()
    rights.run("usermod", "--append", "--groups", "admin", PLAIN)
    os.chmod(folder(f"{SECRET}/Lumetra"), 0o700)


def lay_link(place, target):
    os.rename(place, f"{place}.away")
    os.symlink(target, place)


def lay_link_in_picked():
    os.chmod(PICKED, 0o755)
    lay_link(f"{PICKED}/Lumetra", f"{SECRET}/Lumetra")


def kept(_):
    expect(owner(f"{SECRET}/Lumetra"), ("root", "root", 0o700))


# Rights that are refused

def refused(password, status, prompts=0, said=""):
    return attended(end=NO_ACCESS, prompts=prompts, password=password,
                    said=[f"AuthorizationCopyRights failed: status={status}", said])


def dismissed(user):
    agent = subprocess.Popen([f"{CHECKOUT}/tests/e2e/dismiss", str(user.program.pid)], stdout=subprocess.PIPE,
                             text=True)
    expect(agent.stdout.readline(), "ready\n")
    refused(None, -60006)(user)
    agent.kill()
    expect(len(agent.stdout.readlines()), 1)


def cancelled_beneath_box(user):
    agent = Agent(user.program.pid, PASSWORD)
    to_prompt(user, ())
    user.wait(user.box, "message box")
    user.press("Cancel")
    answer(user, TO_PROMPT[:1])
    walks.see_end(user, [NO_ACCESS[0], "Cancel was pressed."])
    expect(agent.prompts, 0)


def nothing_made(_):
    expect((os.listdir(PARENT), owner(PARENT)[1], Path(PREFERENCE).exists()), ([], "staff", False))


def untouched(_):
    expect((Path(PARENT).exists(), Path(PREFERENCE).exists()), (False, False))
    expect(len(list(database.data_files(DATABASE))), 40)
    expect(rights.helpers(), [])


# Ends at a bad time

def killed(user):
    Agent(user.program.pid, PASSWORD)
    to_prompt(user)
    wait_for_first_file()
    expect(len(rights.helpers()), 1)
    user.program.kill()
    helpers_end()


def stopped_in_dialog(number):
    def steps(user):
        agent = Agent(user.program.pid, None)
        to_prompt(user, TO_PROMPT[:1])
        # Not by answer_box: the window answers no one while the password is waited for.
        user.press("OK", within=user.box)
        user.wait(lambda: agent.prompts == 1, "password prompt")
        user.program.send_signal(number)
        helpers_end()
        user.program.wait(20)
    return steps


def wait_for_first_file():
    rights.wait(lambda: Path(DEFAULT).is_dir() and any(Path(DEFAULT).iterdir()), "first file", limit=120)


def kill_helpers_at_first_file():
    wait_for_first_file()
    for process in rights.helpers():
        os.kill(process, signal.SIGKILL)


def folder(path, user="root", group="root"):
    Path(path).mkdir(parents=True)
    rights.run("chown", f"{user}:{group}", path)
    return path


CASES = {
    "move": Case(attended(asked=SENTENCE), install_policy, installed_for_all),
    "copy": Case(copy(), small_library, installed_for_all),
    "copy_to_folder": Case(copy(folder=DISC), disc_of_group,
                           lambda _: expect(owner(f"{DISC}/Lumetra"), (PLAIN, "admin", 0o2775))),
    "link_for_folder": Case(copy(lay_link_in_picked, PICKED, said=MISLED), disc_with_own_folder, kept),
    "link_for_picked_folder": Case(copy(lambda: lay_link(PICKED, SECRET), PICKED, said=MISLED),
                                   disc_with_own_folder, kept),
    "link_for_shared_folder": Case(
        copy(lambda: lay_link(DEFAULT, f"{SECRET}/Lumetra"), is_member=True, said=MISLED[1:]),
        library_of_members, kept),
    "others_shared_folder": Case(attended(), lambda: folder(PARENT, group="staff"), shared),
    "no_admin_group": Case(attended(), lambda: rights.run("groupdel", "admin"), installed_for_own_group),
    "own_destination": Case(attended(TO_SHARING_PROMPT, folder=HOME),
                            after=lambda system: installed(system, f"{HOME}/Lumetra")),
    "root_folder": Case(attended(folder="/"), after=lambda system: installed(system, "//Lumetra")),
    "system_folder": Case(attended(folder="/opt"), after=lambda system: installed(system, "/opt/Lumetra")),
    "refused_folder": Case(attended(CANCELLED, NOT_WRITABLE, 0, "/opt"), after=untouched),
    "wrong_password": Case(refused("wrong", -60005, 1), after=untouched),
    "dismissed": Case(dismissed, after=untouched),
    "not_an_administrator": Case(refused(PASSWORD, -60005), after=untouched, rule=rights.NOBODY_MAY),
    "no_agent": Case(refused(None, -60007, said="No authentication agent is running"), after=untouched),
    "no_pkexec": Case(refused(None, -60008, said="/usr/bin/pkexec: No such file"),
                      lambda: os.unlink("/usr/bin/pkexec"), untouched),
    "cancelled": Case(cancelled_beneath_box, lambda: folder(PARENT, group="staff"), nothing_made),
    "declined": Case(attended(CANCELLED, NO_ACCESS, 0), after=untouched),
    "declined_once": Case(attended(CANCELLED, NO_ACCESS, 0), lambda: folder(PARENT, group="staff"), nothing_made),
    "killed": Case(killed, files=1000),
    "killed_in_dialog": Case(stopped_in_dialog(signal.SIGKILL), after=untouched),
    "ended_in_dialog": Case(stopped_in_dialog(signal.SIGTERM), after=untouched),
    "helper_killed": Case(attended(said=["status=-60008"]), files=1000, meanwhile=kill_helpers_at_first_file,
                          after=lambda _: expect(Path(PREFERENCE).exists(), False)),
    "broken_preference": Case(attended(said=[f"{PREFERENCE} is not a property list; it stays as it is"]),
                              lambda: Path(PREFERENCE).write_text("not a list"),
                              lambda _: expect(Path(PREFERENCE).read_text(), "not a list")),
}
