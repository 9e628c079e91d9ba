# SPDX-License-Identifier: MIT
"""What the world does to the program: children that die, a service that fails, a clock that jumps.

A step takes the run and its own random numbers, and says what it did. `mend` undoes all that lasts.
"""
import json
import os
import signal
import time

from display import set_size
from watch import LAN_SERVER, stream_of

CRASHES = [signal.SIGSEGV, signal.SIGBUS, signal.SIGFPE, signal.SIGILL, signal.SIGABRT]
ENDS = [signal.SIGTERM, signal.SIGKILL, signal.SIGHUP, signal.SIGINT, signal.SIGQUIT,
        signal.SIGTRAP, signal.SIGSYS, signal.SIGXCPU, signal.SIGUSR1, signal.SIGUSR2,
        signal.SIGALRM, signal.SIGSTKFLT, signal.SIGVTALRM, signal.SIGPROF, signal.SIGIO,
        signal.SIGPWR, signal.SIGRTMIN, signal.SIGRTMAX]
KINDS = ["close", "stall", "truncate", "garble", "slow", "delay", "empty", "redirect", "nonjson",
         "status"]
VALUES = {"slow": 2000, "delay": 3000, "status": 500}
SHARED_MEMORY = "/dev/shm"
SIZES = ["1280x720", "1024x768", "1600x900"]


def some_player(run, random):
    players = sorted((each for each in run.client.tiles() if "player" in each and stream_of(each)),
                     key=lambda each: (each["place"], each["url"]))
    return random.choice(players) if players else None


def end_child(run, random):
    tile = some_player(run, random)
    if not tile:
        return ""
    number = random.choice(CRASHES + ENDS)
    kind = stream_of(tile)[2]
    # Nobody can say a word after SIGKILL: only live play that shows its picture is taken up.
    if number == signal.SIGKILL and (kind == "archive" or "strip" not in tile):
        number = signal.SIGSEGV
    run.watch.disturb(stream_of(tile)[:2])
    os.kill(int(tile["player"]), number)
    return f"{number.name} to the {kind} child of {stream_of(tile)[:2]}"


def stop_child(run, random):
    tile = some_player(run, random)
    if not tile:
        return ""
    pid = int(tile["player"])
    os.kill(pid, signal.SIGSTOP)
    run.stopped.append((pid, stream_of(tile)[:2], time.monotonic() + random.uniform(1, 20)))
    run.watch.disturb(stream_of(tile)[:2])
    return f"SIGSTOP to the child of {stream_of(tile)[:2]}"


def fault(run, random):
    if not run.world.is_up() or len(run.world.faults) > 4:
        return ""
    kind = random.choice(KINDS)
    hits = None
    options = {"kind": kind, "listener": random.choice(["flv", "flv", "lan", "api", "streaming"])}
    if options["listener"] in ("flv", "lan"):
        camera = random.choice(run.world.cameras)
        options.update(server=LAN_SERVER if camera["lan"] else camera["server"],
                       camera=camera["camera"])
        hits = camera["server"], camera["camera"]
        options["listener"] = "lan" if camera["lan"] else "flv"
    if kind in VALUES:
        options["value"] = VALUES[kind]
    if kind in ("stall", "truncate", "garble", "close"):
        options["after"] = random.choice([0, 100, 100000])
    if kind == "redirect":
        options["location"] = random.choice(["http://127.0.0.1:9/", "file:///etc/passwd"])
    if random.random() < 0.5:
        options["times"] = random.randint(1, 5)
    if options["listener"] in ("api", "streaming"):
        run.watch.disturb()
    run.world.add_fault(hits, **options)
    return "fault " + json.dumps(options)


def clear_faults(run, random):
    if not run.world.faults or not run.world.is_up():
        return ""
    run.watch.hold_disturbances()
    run.world.clear_faults()
    return "faults cleared"


def service_ends(run, random):
    if not run.world.is_up():
        return ""
    number = random.choice([signal.SIGKILL, signal.SIGTERM])
    run.watch.disturb()
    run.world.kill(number)
    run.service_due = time.monotonic() + random.choice([0, 2, 15])
    return f"{number.name} to the service"


def camera_off_or_on(run, random):
    if not run.world.is_up():
        return ""
    camera = random.choice(run.world.cameras)
    camera["off"] = not camera.get("off", False)
    run.watch.disturb((camera["server"], camera["camera"]))
    run.world.post("/cameras/set", server=camera["server"], camera=camera["camera"],
                   online=not camera["off"])
    return f"camera {camera['number']} {'off' if camera['off'] else 'on'}"


def sessions_end(run, random):
    if not run.world.is_up():
        return ""
    run.session_is_lost = True  # until the user has signed in again
    run.world.post("/sessions/drop")
    return "every session ended"


def lan_roster(run, random):
    """The file of LAN servers loses its entries, or has them again."""
    path = os.path.join(run.client.run_folder, "local_roster.txt")
    if not os.path.exists(path):
        return ""
    with open(path) as file:
        content = file.read()
    if content.strip() in ("[]", ""):
        new = run.lan_roster
    else:
        run.lan_roster = content
        new = "[]"
    with open(path + ".new", "w") as file:
        file.write(new)
    os.replace(path + ".new", path)
    for camera in run.world.cameras:
        if camera["lan"]:
            run.watch.disturb((camera["server"], camera["camera"]))
    run.watch.disturb()
    return "LAN roster " + ("emptied" if new == "[]" else "restored")


def clock_jumps(run, random):
    if not run.clock_file:
        return ""
    hours = random.choice([-6, -3, -1, 1, 3, 6])
    set_clock(run, hours * 3600)
    run.watch.disturb()
    return f"the client's clock is {hours:+d} h"


def set_clock(run, seconds):
    with open(run.clock_file + ".new", "w") as file:
        file.write(f"{seconds:+d}\n")
    os.replace(run.clock_file + ".new", run.clock_file)


def screen_size(run, random):
    size = random.choice(SIZES + [run.screen])
    set_size(run.display, size)
    return f"screen of {size}"


STEPS = {end_child: 6, stop_child: 2, fault: 6, clear_faults: 3, service_ends: 1,
         camera_off_or_on: 3, sessions_end: 0.3, lan_roster: 0.5, clock_jumps: 1, screen_size: 0.5}


def every_second(run):
    """What was begun and ends by itself."""
    now = time.monotonic()
    remove_dead_clocks()
    for entry in [each for each in run.stopped if each[2] <= now]:
        go_on(run, entry)
    if run.session_is_lost:
        run.watch.disturb()
    for _, camera, _ in run.stopped:
        run.watch.disturb(camera)
    if run.service_due and run.service_due <= now:
        run.service_due = None
        run.world.start()
        run.watch.disturb()


def remove_dead_clocks():
    """A process that is killed leaves what the library of set clocks shares under its number, and
    the next one of that number would be ended by the library, without a word."""
    for name in os.listdir(SHARED_MEMORY):
        number = name.rpartition("_")[2]
        if "faketime" in name and not os.path.exists(f"/proc/{number}"):
            try:
                os.remove(os.path.join(SHARED_MEMORY, name))
            except OSError:
                pass  # another run's, or removed by it


def go_on(run, entry):
    run.stopped.remove(entry)
    run.watch.disturb(entry[1])
    try:
        os.kill(entry[0], signal.SIGCONT)
    except ProcessLookupError:
        pass


def mend(run):
    """The world as at the start, but for the clock."""
    for entry in list(run.stopped):
        go_on(run, entry)
    if not run.world.is_up():
        run.service_due = None
        run.world.start()
    run.world.clear_faults()
    for camera in run.world.cameras:
        if camera.pop("off", False):
            run.world.post("/cameras/set", server=camera["server"], camera=camera["camera"],
                           online=True)
    if run.lan_roster:
        path = os.path.join(run.client.run_folder, "local_roster.txt")
        with open(path) as file:
            is_empty = file.read().strip() in ("[]", "")
        if is_empty:
            lan_roster(run, None)
    set_size(run.display, run.screen)
    run.watch.disturb()
