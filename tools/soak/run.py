# SPDX-License-Identifier: MIT
"""One run: an X server, the service, the client, and the plan that drives them."""
import os
import random
import shutil
import subprocess
import tempfile
import time

import outside
import processes
import user
import wall
from client import Client, faketime_library, middle
from display import add_modes, start_display
from hands import Hands
from watch import JUDGED_SECONDS, Failure, Watch
from world import World

SCREEN = "1920x1080"
STORM_SECONDS = 110
CALM_SECONDS = 80     # longer than a healthy tile may be without a new picture
PROGRAM_STARTS_APART = 2700  # growth is judged within the life of one process
EMAIL, PASSWORD = "demo@zorvane.example", "demo"
RECORDS_EVERY = 3     # of so many calms, one plays the wall from records
BACK_SECONDS = 20     # from records to a wall that plays live
END_SECONDS = 30
WHOLE_SECONDS = 30    # one tile or the other may just be taken up again


class Run:
    def __init__(self, build, folder, tiles, seed, full_rate=True, clock_jumps=True):
        self.build, self.folder, self.count, self.seed = build, folder, tiles, seed
        self.screen = SCREEN
        self.lan_roster = None
        self.layouts = []
        self.stopped = []
        self.service_due = None
        self.expected_end = False
        self.number = 0
        self.last_row = 0.0
        self.session_is_lost = False
        os.makedirs(folder)
        self.steps_file = open(os.path.join(folder, "steps.log"), "w", buffering=1)
        self.table_file = open(os.path.join(folder, "table.md"), "w", buffering=1)
        self.began = time.monotonic()
        self.x_log = open(os.path.join(folder, "x.log"), "ab")
        self.server, self.manager, self.display = start_display(SCREEN, self.x_log)
        self.hands = Hands(self.display)
        add_modes(self.display, outside.SIZES)
        self.clock_file = None
        if clock_jumps and faketime_library():
            self.clock_file = os.path.join(folder, "clock")
            outside.set_clock(self, 0)
        self.client = Client(folder, build, self.display, self.clock_file)
        self.world = World(folder, os.path.join(build, "bin"), tiles, seed, full_rate)
        self.watch = Watch(self.client, self.world, self.say)

    def say(self, text, to_screen=False):
        line = f"{time.monotonic() - self.began:8.1f} {text}"
        self.steps_file.write(line + "\n")
        if to_screen:
            print(line, flush=True)

    def start(self):
        self.world.start()
        self.client.remember(EMAIL, PASSWORD)
        self.client.start()
        self.wait_for_cards()
        wall.make(self)
        self.watch.new_client()

    def wait_for_cards(self):
        if not processes.wait_until(lambda: self.client.find(user.CARDS), 90, 0.3):
            raise Failure("no camera in the roster within 90 s")

    # Ends and starts of the program.

    def expect_end(self):
        self.expected_end = True

    def next_client(self):
        old = self.client.pid
        try:
            self.client.accept(60)
        except TimeoutError:
            raise Failure("no program came in the place of the one that was left")
        if code := self.exit_status(old):
            raise Failure(f"the program that was left for one in another language ended with {code}")
        self.expected_end = False
        self.session_is_lost = False  # it signs in by itself
        self.say(f"process {old} left, {self.client.pid} came")
        self.watch.new_client()
        self.wait_for_window()

    def exit_status(self, pid):
        """Of a client that was left; one that came in another's place is an orphan of ours."""
        if self.client.process.pid == pid:
            try:
                return self.client.process.wait(END_SECONDS)
            except subprocess.TimeoutExpired:
                raise Failure(f"the program {pid} was left and does not end")
        found = {}

        def has_ended():
            ended, found["status"] = os.waitpid(pid, os.WNOHANG)
            return ended
        if not processes.wait_until(has_ended, END_SECONDS):
            raise Failure(f"the program {pid} was left and does not end")
        return os.waitstatus_to_exitcode(found["status"])

    def wait_for_window(self):
        """Signed in again; whoever couldn't, as the service was away, presses the button."""
        def is_in():
            if self.client.main_windows():
                return True
            outside.clear_faults(self, None)  # nobody gets in while the service answers nonsense
            self.sign_in()
            return bool(self.client.main_windows())
        if not self.world.is_up():
            return
        if not processes.wait_until(is_in, 60, 1):
            raise Failure("no window within 60 s of the start")

    def sign_in(self):
        field = processes.wait_until(lambda: self.client.first("", "passwordLn"), 5)
        if not field:
            return False
        self.hands.click(*middle(field))
        self.hands.key("ctrl+a")
        self.hands.type(PASSWORD)
        box = self.client.first("", "forgetBox")
        if box and box["checked"]:
            self.hands.click(*middle(box))
        button = self.client.first("", "signInButton")
        if button:
            self.hands.click(*middle(button))
        self.watch.disturb()
        if not processes.wait_until(lambda: self.client.main_windows(), 10, 0.3):
            return False
        self.session_is_lost = False
        return True

    # Questions.

    def answer_question(self, number):
        """Presses the button of that number, from the left, of the question on the screen."""
        box = processes.wait_until(
            lambda: next((each for each in self.client.windows() if each["modal"]), None), 3)
        if not box:
            return False
        buttons = sorted(self.client.find("QPushButton", "", box["window"]),
                         key=lambda each: each["place"])
        if not buttons:
            self.hands.raise_window(box["window"])
            self.hands.key("Escape")
            return False
        self.hands.click(*middle(buttons[number % len(buttons)]))
        return True

    def settle_questions(self, random):
        time.sleep(0.4)
        for _ in range(3):
            if not any(each["modal"] for each in self.client.windows()):
                return
            self.answer_question(random.randrange(3))
            time.sleep(0.3)

    def tidy_screen(self, random):
        """Menus and popups that a step left open are closed, questions answered."""
        for _ in range(4):
            windows = self.client.windows()
            if any(each["popup"] for each in windows):
                self.hands.key("Escape")
            elif any(each["modal"] for each in windows):
                self.settle_questions(random)
            else:
                return
            time.sleep(0.2)

    # The plan.

    def plan(self, seconds):
        """Phases of (moment, step); the same for the same seed and length."""
        apart = PROGRAM_STARTS_APART if seconds >= JUDGED_SECONDS else 0
        dice = random.Random(self.seed)
        count = max(1, round(seconds / (STORM_SECONDS + CALM_SECONDS)))
        storm = max(0.0, seconds / count - CALM_SECONDS)
        phases, last_start = [], 0
        for place in range(count):
            began = place * (storm + CALM_SECONDS)
            stormy, moment = [], dice.uniform(0.5, 4)
            while moment < storm:
                kinds = user.STEPS if dice.random() < 0.65 else outside.STEPS
                step = dice.choices(list(kinds), list(kinds.values()))[0]
                if step is user.change_language and began - last_start < apart:
                    step = user.settings_page
                elif step is user.change_language:
                    last_start = began
                stormy.append((moment, step))
                moment += dice.uniform(0.5, 4)
            calm, moment = [], dice.uniform(3, 12)
            while moment < CALM_SECONDS:
                calm.append((moment, dice.choices(list(user.GENTLE), user.GENTLE.values())[0]))
                moment += dice.uniform(3, 12)
            phases.append((stormy, storm, calm))
        return phases

    def calm_down(self):
        """The world is mended, and one window shows the wall."""
        dice = random.Random(0)
        outside.mend(self)
        self.tidy_screen(dice)
        self.wait_for_window()
        window = self.one_window(dice)
        if self.session_is_lost:
            if not processes.wait_until(lambda: self.sign_in_anew(dice), 60, 1):
                raise Failure("no way to sign in again")
            window = self.one_window(dice)
        self.hands.raise_window(window["window"])
        self.hands.run("windowsize", window["window"], 1800, 1000)
        self.hands.run("windowmove", window["window"], 20, 20)
        if self.client.find("", "playButton"):
            self.hands.key("space")
        wall.open(self)
        self.watch.disturb()
        self.say("calm: " + ", ".join(each["title"] for each in self.client.main_windows()))

    def one_window(self, dice):
        """The main window that is left when all others are closed, with its panels."""
        for _ in range(5):
            if len(self.client.main_windows()) < 2:
                break
            user.close_window(self, dice)
            time.sleep(0.5)
        window = self.client.main_windows()[0]
        if window["fullscreen"]:
            self.hands.raise_window(window["window"])
            self.hands.key("Escape", "Escape")
        return window

    def sign_in_anew(self, dice):
        self.tidy_screen(dice)
        if not self.client.main_windows():
            return self.sign_in()
        return user.sign_out_and_in(self, dice) == "signed out and in"

    def drive(self, seconds):
        phases = self.plan(seconds)
        with open(os.path.join(self.folder, "plan.txt"), "w") as file:
            for stormy, length, calm in phases:
                file.writelines(f"{moment:.1f} {step.__name__}\n" for moment, step in stormy)
                file.write("calm\n")
                file.writelines(f"{moment:.1f} {step.__name__}\n" for moment, step in calm)
        print(Watch.HEAD, flush=True)
        self.table_file.write(Watch.HEAD + "\n")
        for place, (stormy, length, calm) in enumerate(phases):
            self.watch.at_rest = False
            self.take_all(stormy, length)
            self.calm_down()
            self.watch.at_rest = True
            if place % RECORDS_EVERY == 1:
                self.rest_in_records(calm)
            else:
                self.take_all(calm, CALM_SECONDS)
            self.write_row("at rest")

    def rest_in_records(self, calm):
        """The same wall, and its one clock, judged in archive play; then back to live."""
        wall.play_records(self)
        self.watch.in_records = True
        self.watch.disturb()
        self.take_all(calm, CALM_SECONDS)
        self.write_row("in records")
        self.watch.in_records = False
        wall.open(self)
        self.watch.disturb()
        self.take_all([], BACK_SECONDS)

    def take_all(self, steps, seconds):
        """Takes each step at its moment; whoever is late leaves out, rather than being late."""
        start = time.monotonic()
        left = list(steps)
        while (now := time.monotonic() - start) < seconds:
            self.check_alive()
            outside.every_second(self)
            self.watch.look()
            if not self.watch.rows or time.monotonic() - self.last_row >= 60:
                self.write_row()
            while len(left) > 1 and left[1][0] < now:
                left.pop(0)
                self.number += 1
            if left and left[0][0] <= now:
                self.take(self.number, left.pop(0)[1])
                self.number += 1
            else:
                time.sleep(0.5)
        self.number += len(left)

    def write_row(self, state=""):
        """A wall that is whole shows all its tiles, each with its player, and nothing else."""
        def is_whole():
            self.check_alive()
            return len(self.watch.players()) == len(self.client.tiles()) == self.count
        if state and not processes.wait_until(is_whole, WHOLE_SECONDS, 0.5):
            raise Failure(f"{len(self.watch.players())} players and {len(self.client.tiles())} "
                          f"tiles {state}, of {self.count}")
        self.last_row = time.monotonic()
        row = self.watch.row(self.client.tiles())
        row["rest"] = state == "at rest"
        line = " ".join(filter(None, [Watch.line(row), state]))
        print(line, flush=True)
        self.table_file.write(line + "\n")
        self.watch.judge_stall(row)

    def take(self, number, step):
        """Every step has random numbers of its own, whatever the ones before it found."""
        dice = random.Random(f"{self.seed}/{number}")
        if step in outside.STEPS:
            done = step(self, dice)
        else:
            if not self.client.main_windows():
                self.tidy_screen(dice)
                self.wait_for_window()
                if not self.client.main_windows():
                    return
            self.tidy_screen(dice)
            done = step(self, dice)
            self.hands.move(5, 5)
        self.say(f"{number} {step.__name__}: {done or 'not now'}")

    def check_alive(self):
        if self.client.is_alive() or self.expected_end:
            return
        raise Failure(f"the client {self.client.pid} is gone")

    # The end.

    def leave(self):
        """The last window is closed; nothing may stay."""
        outside.mend(self)
        pid = self.client.pid
        for _ in range(8):
            self.tidy_screen(random.Random(0))
            windows = self.client.main_windows()
            if not windows:
                break
            self.expect_end()
            self.hands.raise_window(windows[0]["window"])
            time.sleep(0.3)
            self.hands.key("alt+F4")
            if processes.wait_until(lambda: not self.client.is_alive(), 3):
                break
        if not processes.wait_until(lambda: not self.client.is_alive(), 20):
            raise Failure("the program does not end with its last window")
        if code := self.exit_status(pid):
            raise Failure(f"the program ended with {code}")
        left = os.listdir(self.client.temporary)
        if left:
            raise Failure(f"temporary files are left: {left}")
        if not processes.wait_until(lambda: not self.strays(), 11):
            raise Failure(f"children are left: {self.strays()}")

    def strays(self):
        processes.reap({each.pid for each in (self.client.process, self.world.process,
                                              self.server, self.manager) if each})
        me = os.getpid()
        return [pid for pid, one in processes.everyone().items()
                if one["parent"] == me and one["name"].startswith("vlc-stream")]

    def keep_evidence(self):
        if not self.client.stream:
            return  # it never came up
        try:
            self.client.ask("shot", os.path.join(self.folder, "failure.png"))
            with open(os.path.join(self.folder, "failure.txt"), "w") as file:
                for tile in self.client.tiles():
                    file.write(f"{tile}\n")
                for window in self.client.windows():
                    file.write(f"{window}\n")
        except (OSError, ValueError):
            pass

    def stop(self):
        for entry in list(self.stopped):
            outside.go_on(self, entry)
        self.client.end()
        self.world.stop()
        for pid in self.strays():
            processes.send(pid, 9)
        processes.end(self.manager)
        processes.end(self.server)
        shutil.rmtree(os.path.join(self.folder, "service"), ignore_errors=True)


def fresh_folder(name):
    """Short: the address of a socket has little room."""
    return os.path.join(tempfile.mkdtemp(prefix="zorvane-soak."), name)
