"""The tables: ways to stop in every state, faults, and the sweep of failing calls."""

import os

from world import DESTINATION, INSTALLED, PARENT, Case

CANCELLED = r"Database was not installed\|Cancel was pressed\.$"
FAILED = r"Database was not installed\|"
SAID = FAILED + "Error message is:\n.*"
NO_RECORD = r"Database was installed, but is not available\|System-wide preferences could not be set$"
NO_ROOM = r"Select Database location\|.* not have enough free space .* \(2\.00 MB "
ANSWER = 200
HALF_DONE = "part; exec sleep 100"
# Has the file in its hands for a while: whoever kills it then loses it.
SLOW_MOVE = '/opt/real/mv "$source" /tmp/c; : >/tmp/tool-runs; sleep 1; exec /opt/real/mv /tmp/c "$target"'
# Sees no notice before the box that a password dialog would follow.
ADMINISTRATOR = "{ cat /etc/group; echo admin:x:4711:; } >/tmp/group; mount --bind /tmp/group /etc/group"
NO_DATA = r"Welcome.*0\.00 GB"
LOG_SWITCH = "/root/Library/Preferences/com.brindle.Corvane"
UNWRITABLE = "mount -o remount,ro /Library"

SIGNALS = ("term", "int", "hup")
ANY_MEANS = ("button", "escape", "close", *SIGNALS)


def stops():
    """Every means in every state; a box and a dialog leave the window only to the signals."""
    def each(state, means=ANY_MEANS, **more):
        for one in means:
            yield Case(f"{state}{' move' if more.get('move') else ''}, {one}", state=state, means=one, **more)

    yield from each("agreement", outcome="Welcome")
    yield from each("scanning", ("button", "term"), outcome="Welcome", empty=200_000, answer=ANSWER)
    yield from each("found", outcome="Welcome")
    yield from each("choosing", SIGNALS, outcome="Welcome", setup="cd /; umount -l /opt/Lumetra; rmdir /opt/Lumetra")
    yield from each("destination", outcome="Select")
    yield Case("free-space probe, term", outcome="Select", df="kill -TERM $PPID; exec sleep 100", seconds=20)
    yield from each("before", outcome="Installing Database")
    yield from each("preparing", SIGNALS, outcome="Database was not installed", setup=UNWRITABLE)
    yield from each("running", outcome=CANCELLED, cp=HALF_DONE, answer=ANSWER)
    yield from each("running", outcome=CANCELLED, move=True, mv=SLOW_MOVE)
    yield from each("recording", SIGNALS, outcome=NO_RECORD, setup=ADMINISTRATOR)
    yield from each("done", outcome=INSTALLED)


def at_third(name, tool_fault, text, **more):
    return Case(name, cp=tool_fault, outcome=text, **more)


AS_PLAIN_USER = {"setup": f"chown -R 65534 . '{PARENT}'", "limits": "exec setpriv --reuid=65534 --clear-groups"}
FAULTS = (
    at_third("disk fills", "", SAID + "No space left", room="1m", df="printf 'h\\n/d 9 1 9999999 1% /\\n'"),
    at_third("read-only meanwhile", UNWRITABLE, SAID + "Read-only file system"),
    at_third("file vanishes", 'rm "$source"', SAID + "No such file", lost=("c.zqin",)),
    at_third("file becomes a folder", 'rm "$source"; mkdir "$source"', SAID + "omitting directory", lost=("c.zqin",)),
    at_third("file can't be read", 'chmod 0 "$source"', SAID + "Permission denied", **AS_PLAIN_USER),
    at_third("source unmounted", "umount -l /opt/Lumetra", SAID + "No such file"),
    at_third("tool killed", "part; kill -9 $$", FAILED + r"/bin/cp: crashed\.$"),
    at_third("tool killed before it opens the older file", "kill -9 $$", FAILED + r"/bin/cp: crashed\.$",
             setup=f"mkdir -p '{DESTINATION}'; echo older >'{DESTINATION}/c.zqin'"),
    at_third("tool can't be started", ":", FAILED + r"/bin/cp: failed to start\.$", setup="chmod 644 /opt/cp"),
    at_third("tool hangs", "part; kill -STOP $$", CANCELLED, state="running", means="button", answer=ANSWER),
    at_third("tool warns", '/opt/real/cp "$@"; echo é 100%s >&2; exit 0', SAID + "é 100%s\n$"),
    at_third("tool never stops warning", '/opt/real/cp "$@"; yes "" | head -c 5000000 >&2; exit 0', SAID),
    at_third("tool fails in silence", "exit 1", INSTALLED, silent=True),
    Case("mv killed while it copies", move=True, mv="part; kill -9 $$", outcome=FAILED + r"/bin/mv: crashed\.$"),
    Case("mv killed when done", move=True, mv='/opt/real/mv "$@"; kill -9 $$', outcome=FAILED + r"/bin/mv: crashed\.$"),
    Case("df can't be started", df="exit 0", setup="chmod 644 /opt/df", outcome=NO_ROOM),
    Case("log on a full disk", setup=f"""ln -s /dev/full /root/log
        exec /opt/Installer/Contents/Helpers/defaults write {LOG_SWITCH} driver_LogLocation /root/log"""),
    Case("log at the limit of a file's size", move=True, limits="ulimit -f 1; exec", setup=f"""
        head -c 512 /dev/zero >/root/log
        exec /opt/Installer/Contents/Helpers/defaults write {LOG_SWITCH} driver_LogLocation /root/log"""),
    Case("log's place is no text", setup=f"""mkdir -p {os.path.dirname(LOG_SWITCH)}
        echo '<plist><dict><key>driver_LogLocation</key><array/></dict></plist>' >{LOG_SWITCH}.plist"""),
    Case("source without data files", files=0, outcome=NO_DATA),
    Case("source unmounted while it is measured", state="scanning", means="unmount", empty=200_000, outcome=NO_DATA),
    Case("listing fails half-way", failing="list:6:5", outcome=NO_DATA),
    Case("source's disk falls silent", failing="access:1:0", outcome=r"Welcome.*not found"),
    Case("destination's disk falls silent", failing="access:3:0"),
    Case("/tmp can't be written", setup="mount -t tmpfs -o ro none /tmp"),
    Case("HOME unset", limits="exec env -u HOME"),
    at_third("messages unread", '/opt/real/cp "$@"; echo careful >&2; exit', SAID + "careful\n$",
             limits="mkfifo /tmp/f; exec 3<>/tmp/f 2>/tmp/f 3<&-; exec"),
    at_third("descriptors exhausted", "prlimit --pid $PPID --nofile=6",
             FAILED + "/bin/cp: (failed to start|unknown error)"),
    Case("no process for systemd-inhibit", failing="fork:2:11", outcome=NO_RECORD, limits=AS_PLAIN_USER["limits"],
         setup=AS_PLAIN_USER["setup"] + "; chmod 666 /opt/count"),
    at_third("no process left", "prlimit --pid $PPID --nproc=1", FAILED + r"/bin/cp: failed to start\.$",
             **AS_PLAIN_USER),
    Case("no thread left", df="prlimit --pid $PPID --nproc=1; printf 'h\\n/d 9 1 9999999 1% /\\n'",
         outcome=FAILED + "The installation failed to start", **AS_PLAIN_USER),
)

# Nearly a minute of waiting, so that these run beside other tests.
HANGS = (Case("mv hangs", move=True, mv=": >/tmp/tool-runs; kill -STOP $$", outcome=CANCELLED, state="running",
              means="button", answer=34000),
         Case("df hangs", df="exec sleep 200", outcome=NO_ROOM, seconds=100))

if os.geteuid() != 0:
    FAULTS = tuple(case for case in FAULTS if "setpriv" not in case.limits)
# The sanitizers themselves need a pipe for each of their checks, and a process to look for leaks.
if os.environ.get("PATIENCE", "1") != "1":
    FAULTS = tuple(case for case in FAULTS if "prlimit" not in case.cp + case.df and not case.failing)

LONG_RUN = Case("long run", files=100, size=2000, state="random", means="button")
STALLS = (Case("200,000 files scanned", empty=200_000, state="destination", means="close", outcome="Select", gap=100),
          Case("2,000 files copied", empty=1998, files=2, seconds=300, gap=100))
# Each kind of call with an error that it really meets.
CALLS = {"open": (13, 24), "mkdir": (28,), "stat": (5,), "chown": (1,), "chmod": (1,), "fork": (11,), "write": (28,),
         "rename": (5, 18)}
# Whatever call fails: one of the pages' last words.
LAST_WORDS = rf"{INSTALLED}|{NO_RECORD}|{FAILED}.+|Select Database.*not have enough|Welcome.*(not found|0\.00 GB)"
