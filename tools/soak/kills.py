#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Kills the client at random moments of busy sessions, and looks at what is left.

After each kill every file of the user's must read as old or new; no child may live on, and no
frame file may stay for good. See docs/reliability.md.
"""
import argparse
import collections
import configparser
import hashlib
import json
import os
import random
import shutil
import sys
import threading
import time
import traceback

import processes
import user
import versions
from client import Client, middle
from display import start_display
from hands import Hands
from run import EMAIL, PASSWORD, fresh_folder
from watch import GRACE_SECONDS, Failure
from world import World

CAMERAS = 7
WALL_SIDE = 2
FINAL_CHECK_EVERY = 25
EXPORT_SECONDS = 3
QUIET_LOOKS = 15  # a program that starts anew is between two processes for a moment
KILLED = -9
FRAME_FILES = "zorvane-player-"


class Session(threading.Thread):
    """One user's folder, screen and program, killed over and over."""

    def __init__(self, number, shared):
        super().__init__(daemon=True)
        self.shared = shared
        self.number = number
        folder = os.path.join(shared.folder, f"s{number}")
        os.makedirs(folder)
        self.log = open(os.path.join(folder, "x.log"), "ab")
        self.server, self.manager, display = start_display("1280x800", self.log)
        self.hands = Hands(display)
        self.client = Client(folder, shared.build, display)
        self.cache = os.path.join(self.client.home, ".cache/Zorvane Client",
                                  "layouts." + hashlib.md5(EMAIL.encode()).hexdigest())
        self.prepare()
        # As a run has them for its steps.
        self.layouts = ["A wall"]
        self.failure = None
        self.kills_done = False

    def prepare(self):
        run = self.client.run_folder
        shutil.copy(os.path.join(self.shared.folder, "run/service.ini"), run)
        shutil.copy(os.path.join(self.shared.folder, "run/local_roster.txt"), run)
        with open(os.path.join(run, "local_roster.txt")) as file:
            self.roster = json.load(file)
        self.client.remember(EMAIL, PASSWORD)
        os.makedirs(os.path.dirname(self.cache))
        cells = [{"server": camera["server"], "camera": camera["camera"], "w": 1, "h": 1,
                  "row": place // WALL_SIDE, "column": place % WALL_SIDE}
                 for place, camera in enumerate(self.shared.wall)]
        wall = {"id": "wall", "name": "A wall", "rows": WALL_SIDE, "columns": WALL_SIDE,
                "cameras": cells}
        with open(self.cache, "w") as file:
            json.dump({"last_update": int(time.time()), "layouts": [wall]}, file)
        os.chmod(self.cache, versions.OWNER_ONLY)

    # What goes on when the kill comes. Each step may meet a program that is gone.

    def saves(self, dice):
        window = self.client.main_windows()[0]
        user.show_page(self, window, "layoutsButton")
        while not self.kills_done:
            user.press(self, window, "addLayoutButton")
            time.sleep(0.1)
            field = self.client.first("", "layoutNameEdit", window["window"])
            button = self.client.first("", "saveLayoutButton", window["window"])
            if field and button:
                self.hands.click(*middle(field))
                self.hands.key("ctrl+a")
                self.hands.type(f"L{dice.randrange(100)}")
                self.hands.click(*middle(button))
            if len(self.client.find(user.LAYOUTS)) > 4:
                user.delete_layout(self, dice)

    def export(self, dice):
        window = self.client.main_windows()[0]
        self.hands.key("ctrl+1")
        processes.wait_until(lambda: len(self.client.tiles()) >= 4, 5)
        self.hands.key("r")
        processes.wait_until(lambda: self.client.find("Timeline"), 5)
        user.press(self, window, "prevDayButton")
        time.sleep(0.5)
        strip = self.client.first("Timeline")
        if not strip:
            return
        left, top, width, _ = strip["place"]
        self.hands.click(left + width // 3, top + 30)
        while not self.kills_done:
            for name, longest in (("exportModeButton", 0.4), ("exportButton", EXPORT_SECONDS),
                                  ("cancelButton", 0.4)):
                user.press(self, window, name)
                time.sleep(dice.uniform(0.05, longest))

    def language(self, dice):
        window = self.client.main_windows()[0]
        self.hands.key("ctrl+1")
        if not user.open_settings(self, window):
            return
        box = processes.wait_until(lambda: self.client.first("", "languageBox"), 3)
        self.hands.click(*middle(box))
        self.hands.key("Up" if box["index"] else "Down", "Return")
        again = processes.wait_until(lambda: self.client.first("", "restartButton"), 3)
        self.hands.click(*middle(again))
        processes.wait_until(lambda: self.kills_done, 10, 0.05)

    def settle_questions(self, dice):
        pass

    def cycle(self, dice):
        before = versions.read(self.cache)
        scene = dice.choice([self.saves, self.saves, self.export, self.language, None])
        self.client.start()
        if scene:
            # The page that was open when the last one was killed is open again.
            processes.wait_until(lambda: self.client.main_windows() and
                                 (self.client.find(user.CARDS) or self.client.find(user.LAYOUTS)),
                                 60, 0.05)
        self.kills_done = False
        # An export is reached after some seconds only.
        shortest, longest = {None: (0.02, 0.8), self.export: (2, 9)}.get(scene, (0.02, 3))
        fuse = threading.Timer(dice.uniform(shortest, longest), self.kill)
        fuse.start()
        try:
            if scene and self.client.main_windows():
                scene(dice)
            fuse.join()
        except (OSError, ValueError, IndexError, StopIteration, TypeError):
            fuse.join()  # killed on the way
        self.kill()
        self.check_end(scene)
        self.shared.count(scene.__name__ if scene else "start")
        self.check_files(before)

    def check_end(self, scene):
        """It ended by the kill; or, left for one in another language, by itself and well."""
        code = self.client.process.wait()
        if code != KILLED and (code, scene) != (0, self.language):
            raise Failure(f"the program ended with {code}, before it was killed")

    def kill(self):
        """All that runs as the client here, also one that is just coming in its place."""
        run = os.path.realpath(self.client.run_folder)
        quiet = 0
        while quiet < QUIET_LOOKS:
            found = [pid for pid, one in processes.everyone().items()
                     if one["name"].startswith("ZorvaneClient") and one["state"] != "Z"
                     and processes.folder_of(pid) == run]
            self.shared.note_children(found)
            for pid in found:
                processes.send(pid, 9)
            quiet = 0 if found else quiet + 1
            time.sleep(0.02)
        self.kills_done = True

    # What is left.

    def check_files(self, before):
        versions.judge(self.cache, before, versions.read(self.cache))
        run = self.client.run_folder
        with open(os.path.join(run, "local_roster.txt")) as file:
            if json.load(file) != self.roster:
                raise Failure("the LAN roster has changed")
        settings = configparser.ConfigParser(interpolation=None)
        with open(os.path.join(run, "ZorvaneClient.ini")) as file:
            settings.read_string(file.read())
        if settings["auth"]["email"] != EMAIL or settings["auth"]["password"] != PASSWORD \
                or settings["auth"]["saveauth"] != "true" \
                or settings["common"]["language"] not in ("en", "ru"):
            raise Failure(f"settings: {dict(settings['auth'])}")
        with open(os.path.join(run, "zorvane_client_log.txt"), encoding="utf-8") as file:
            file.read()

    def check_left_overs(self):
        """A start removes what runs that are over have left; a proper end leaves nothing."""
        time.sleep(GRACE_SECONDS)
        self.client.start()
        if not processes.wait_until(self.client.main_windows, 60):
            raise Failure("no window after a kill")
        left = [name for name in os.listdir(self.client.temporary)]
        if left:
            raise Failure(f"frame files of dead runs stay: {left}")
        parts = [name for _, _, files in os.walk(self.client.home) for name in files
                 if name.endswith(".part")]
        if parts:
            raise Failure(f"exports of dead runs stay: {parts}")
        self.kill()
        self.check_end(None)
        self.shared.count("start")

    def run(self):
        dice = random.Random(f"{self.shared.seed}/{self.number}")
        try:
            cycles = 0
            while not self.shared.is_over():
                self.cycle(dice)
                cycles += 1
                if cycles % FINAL_CHECK_EVERY == 0:
                    self.check_left_overs()
            self.check_left_overs()
        except Exception:
            self.failure = traceback.format_exc()
            print(f"session {self.number}: {self.failure}", flush=True)
            self.shared.fail()

    def stop(self):
        self.client.end()
        self.kill()
        processes.end(self.manager)
        processes.end(self.server)


class Kills:
    """The sessions side by side, and their one service."""

    def __init__(self, options, folder):
        self.folder, self.build, self.seed = folder, options.build, options.seed
        self.wanted, self.counts = options.count, collections.Counter()
        self.deadline = time.monotonic() + 60 * options.minutes
        self.lock, self.is_failed = threading.Lock(), False
        self.players, self.exports = 0, 0  # that ran at the moments of the kills
        self.orphans, self.longest_life = {}, 0.0
        self.heartbeat = processes.Heartbeat()
        os.makedirs(folder)
        self.world = World(folder, os.path.join(options.build, "bin"), CAMERAS, options.seed, False)
        os.makedirs(os.path.join(folder, "run"))
        self.world.start()
        self.wall = sorted(self.world.cameras, key=lambda each: not each["lan"])[:4]
        self.sessions = []

    def count(self, what):
        with self.lock:
            self.counts[what] += 1

    def note_children(self, of_clients):
        for pid, one in processes.everyone().items():
            if one["parent"] in of_clients and one["name"].startswith("vlc-stream"):
                is_export = processes.read(f"/proc/{pid}/cmdline").split(b"\0")[1:2] == [b"export"]
                with self.lock:
                    self.players += not is_export
                    self.exports += is_export

    def fail(self):
        self.is_failed = True

    def is_over(self):
        return self.is_failed or sum(self.counts.values()) >= self.wanted \
            or time.monotonic() > self.deadline

    def look_for_orphans(self):
        """Players whose client is gone come to this process, and must end soon."""
        now, me = time.monotonic(), os.getpid()
        if self.heartbeat.was_held():
            self.orphans.clear()
        present = set()
        own = {each.pid for session in self.sessions
               for each in (session.client.process, session.server, session.manager) if each}
        own.add(self.world.process.pid)
        for name, code in processes.reap(own).values():
            if name.startswith("ZorvaneClient") and code not in (0, KILLED):
                raise Failure(f"a program that was started anew ended with {code}")
        for pid, one in processes.everyone().items():
            if one["parent"] != me or not one["name"].startswith("vlc-stream"):
                continue
            key = pid, one["started"]
            present.add(key)
            age = now - self.orphans.setdefault(key, now)
            self.longest_life = max(self.longest_life, age)
            if age > GRACE_SECONDS and one["state"] not in "ZT":
                raise Failure(f"child {pid} lives {age:.0f} s after its client")
        for key in set(self.orphans) - present:
            del self.orphans[key]

    def run(self, workers):
        self.sessions = [Session(number, self) for number in range(workers)]
        for session in self.sessions:
            session.start()
        began = told = time.monotonic()
        while any(session.is_alive() for session in self.sessions):
            self.look_for_orphans()
            if time.monotonic() - told > 60:
                told = time.monotonic()
                print(f"{(told - began) / 60:5.1f} min, {sum(self.counts.values())} kills",
                      flush=True)
            time.sleep(0.25)
        failures = [session.failure for session in self.sessions if session.failure]
        if failures:
            raise Failure("\n".join(failures))
        if not processes.wait_until(lambda: self.look_for_orphans() or not self.orphans,
                                    GRACE_SECONDS + 2):
            raise Failure("children are left")

    def stop(self):
        for session in self.sessions:
            session.stop()
        self.world.stop()


def main():
    parser = argparse.ArgumentParser(prog="scripts/kills", description=__doc__)
    parser.add_argument("count", nargs="?", type=int, default=200)
    parser.add_argument("--workers", type=int, default=3, help="sessions side by side")
    parser.add_argument("--minutes", type=float, default=600, help="no kills after so many")
    parser.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    parser.add_argument("--build", required=True, help=argparse.SUPPRESS)
    options = parser.parse_args()
    processes.adopt_orphans()
    folder = fresh_folder("kills")
    print(f"== {options.count} kills, {options.workers} sessions, seed {options.seed}, in {folder}",
          flush=True)
    kills, failure = None, None
    try:
        kills = Kills(options, folder)
        kills.run(options.workers)
    except Failure as caught:
        failure = str(caught)
    except Exception:
        failure = traceback.format_exc()
    if kills:
        kills.stop()
        for what, count in sorted(kills.counts.items()):
            print(f"| {what} | {count} |")
        print(f"children at those moments: {kills.players} players, {kills.exports} exports; "
              f"longest life of one after its client: {kills.longest_life:.1f} s")
    if failure:
        print(f"FAILED: {failure}\n(see {folder})", file=sys.stderr)
        return 1
    shutil.rmtree(os.path.dirname(folder), ignore_errors=True)
    print(f"== {sum(kills.counts.values())} kills: nothing lost, nothing left")
    return 0


if __name__ == "__main__":
    sys.exit(main())
