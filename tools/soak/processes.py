# SPDX-License-Identifier: MIT
"""What the system tells of processes, and how the run's own ones are ended."""
import ctypes
import os
import signal
import threading
import time

SET_CHILD_SUBREAPER = 36
SET_PARENT_DEATH_SIGNAL = 1
_libc = ctypes.CDLL(None, use_errno=True)


def adopt_orphans():
    """From here on processes whose parents are gone become children of this one."""
    _libc.prctl(SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def end_with_parent():
    """For a child of this process, before it becomes a program."""
    _libc.prctl(SET_PARENT_DEATH_SIGNAL, signal.SIGKILL, 0, 0, 0)


class Heartbeat(threading.Thread):
    """Notices when the machine holds everything up, this process too."""
    INTERVAL = 0.1
    NOTED = 1.0

    def __init__(self):
        super().__init__(daemon=True)
        self.longest = 0.0
        self.last_hold = None  # when the last long one was over
        self.start()

    def run(self):
        before = time.monotonic()
        while True:
            time.sleep(self.INTERVAL)
            now = time.monotonic()
            gap = now - before - self.INTERVAL
            self.longest = max(self.longest, gap)
            if gap > self.NOTED:
                self.last_hold = now
            before = now

    def was_held(self):
        """True once after each hold of more than a second."""
        held, self.last_hold = self.last_hold, None
        return held is not None

    def take(self):
        """The longest hold since the last call."""
        longest, self.longest = self.longest, 0.0
        return longest


def read(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:
        return b""


def status(pid):
    """State letter, parent and start in clock ticks; None for one that is gone."""
    line = read(f"/proc/{pid}/stat")
    if not line:
        return None
    name = line[line.index(b"(") + 1:line.rindex(b")")].decode(errors="replace")
    fields = line[line.rindex(b")") + 2:].split()
    return {"name": name, "state": fields[0].decode(), "parent": int(fields[1]),
            "started": int(fields[19])}


def everyone():
    found = {}
    for name in os.listdir("/proc"):
        if name.isdigit():
            one = status(int(name))
            if one:
                found[int(name)] = one
    return found


def children_of(pid, among=None):
    return [each for each, one in (among or everyone()).items() if one["parent"] == pid]


def pss_bytes(pid):
    for line in read(f"/proc/{pid}/smaps_rollup").splitlines():
        if line.startswith(b"Pss:"):
            return int(line.split()[1]) * 1024
    return 0


def own_bytes(pid):
    """What it has to itself in memory, whatever others share libraries and frames with it."""
    for line in read(f"/proc/{pid}/status").splitlines():
        if line.startswith(b"RssAnon:"):
            return int(line.split()[1]) * 1024
    return 0


def count(folder):
    try:
        return len(os.listdir(folder))
    except OSError:
        return 0


def threads(pid):
    return count(f"/proc/{pid}/task")


def descriptors(pid):
    return count(f"/proc/{pid}/fd")


def mappings(pid):
    return read(f"/proc/{pid}/maps").count(b"\n")


def folder_of(pid):
    """Where it works; empty for one that is gone."""
    try:
        return os.readlink(f"/proc/{pid}/cwd")
    except OSError:
        return ""


def send(pid, number):
    try:
        os.kill(pid, number)
        return True
    except ProcessLookupError:
        return False


def reap(except_for=()):
    """Name and status of orphans that have ended; what was started here waits for its owner."""
    me = os.getpid()
    ended = {}
    for pid, one in everyone().items():
        if one["parent"] == me and one["state"] == "Z" and pid not in except_for:
            try:
                status_now = os.waitpid(pid, os.WNOHANG)[1]
                ended[pid] = one["name"], os.waitstatus_to_exitcode(status_now)
            except ChildProcessError:
                pass
    return ended


def end(process, seconds=5):
    """Ends a subprocess.Popen: asked first, then killed."""
    if process is None or process.poll() is not None:
        return
    process.terminate()
    try:
        process.wait(seconds)
    except Exception:
        process.kill()
        process.wait()


def wait_until(condition, seconds, pause=0.1):
    """Counts looks, not time: a machine that holds everything up for a while takes one."""
    for _ in range(max(1, int(seconds / pause))):
        value = condition()
        if value:
            return value
        time.sleep(pause)
    return condition()
