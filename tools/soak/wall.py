# SPDX-License-Identifier: MIT
"""The wall of a run: one layout with all cameras, made, opened and played as a user does."""
import math
import random
import time

import processes
import user
from client import middle
from watch import Failure, stream_of

NAME = "A wall"
SERVERS = 2  # of the roster: one of the service, one in the LAN
ROSTER_SECONDS = 90  # until a server that came back is in the list
RECORDS_SECONDS = ROSTER_SECONDS  # a camera that was off is shown once the list says that it is back
STRIP_PART = 1 / 3  # of the day: where all cameras have records


def make(run):
    window = run.client.main_windows()[0]
    run.hands.raise_window(window["window"])
    run.hands.run("windowsize", window["window"], 1800, 1000)
    run.hands.run("windowmove", window["window"], 20, 20)
    user.show_page(run, window, "layoutsButton")
    user.press(run, window, "addLayoutButton")
    processes.wait_until(lambda: run.client.find("VideoPlaceholder"), 20)
    time.sleep(1)
    side = math.ceil(math.sqrt(run.count))
    user.choose_grid(run, window, side, side)
    processes.wait_until(lambda: len(run.client.find("VideoPlaceholder")) == side * side, 10)
    # The name of a server is dragged with all its cameras. Folded, all names are in sight.
    fold_servers(run)
    for place in range(SERVERS):
        run.hands.drag(middle(server_bars(run)[place]),
                       middle(run.client.first("VideoPlaceholder")))
        time.sleep(1)
    if not is_whole_within(run, 30):
        raise Failure(f"{len(run.client.tiles())} tiles from dropped servers of {run.count}")
    unfold_servers(run)
    others = run.layouts[1:]
    if not user.save_as(run, random.Random(0), NAME):
        raise Failure("the wall can't be saved")
    run.layouts = [NAME] + others


def is_whole_within(run, seconds):
    return processes.wait_until(lambda: len(run.client.tiles()) == run.count, seconds, 0.3)


def server_bars(run):
    bars = [each for each in run.client.find("", "controlBar")
            if any(user.inside(each, server) for server in run.client.find("ServerWidget"))]
    return sorted(bars, key=lambda each: each["place"][1])


def fold_servers(run):
    """All that are unfolded, and with that the list back to its top."""
    for _ in range(2 * SERVERS):
        place = run.client.first("RosterWidget")
        if place:
            run.hands.wheel(*middle(place), 30)
            time.sleep(0.3)
        bars = server_bars(run)
        unfolded = next((each for each in run.client.find("", "expandButton")
                         if each["checked"] and any(user.inside(each, bar) for bar in bars)), None)
        if not unfolded:
            return
        run.hands.click(*middle(unfolded))
        time.sleep(0.5)


def unfold_servers(run):
    # The last one first: an unfolded server pushes those below it out of sight.
    for bar in reversed(server_bars(run)):
        button = next((each for each in run.client.find("", "expandButton")
                       if user.inside(each, bar)), None)
        if button:
            run.hands.click(*middle(button))
            time.sleep(0.5)


def open(run):
    """The layout as it was saved; where it was edited and saved, it is made anew."""
    window = run.client.main_windows()[0]
    run.hands.click(*middle(top_card(run, window)))
    time.sleep(0.4)
    if any(each["modal"] for each in run.client.windows()):
        run.answer_question(1)  # not saved
    if is_whole_within(run, 5):
        return
    user.show_page(run, window, "rosterButton")
    fold_servers(run)
    if not processes.wait_until(lambda: len(server_bars(run)) >= SERVERS, ROSTER_SECONDS, 1):
        raise Failure(f"a server is not in the roster for {ROSTER_SECONDS} s")
    if run.client.main_windows()[0]["title"].startswith(NAME):
        user.delete_card(run, window, top_card(run, window))
        time.sleep(1)
    make(run)
    run.say("the wall is made anew")


def top_card(run, window):
    def shown():
        user.show_page(run, window, "layoutsButton")
        return min(run.client.find(user.LAYOUTS, "", window["window"]),
                   key=lambda each: each["place"][1], default=None)
    card = processes.wait_until(shown, 10, 0.5)
    if not card:
        # A key that was meant for the window may have gone into the field that chooses some.
        run.hands.raise_window(window["window"])
        run.hands.key("ctrl+f", "ctrl+a", "BackSpace")
        card = processes.wait_until(shown, 45, 0.5)
    if not card:
        raise Failure("no layout in the list")
    return card


def play_records(run):
    """All tiles, from the morning of a day before."""
    window = run.client.main_windows()[0]
    run.hands.raise_window(window["window"])
    if not run.client.find("Timeline"):
        user.press(run, window, "showRecordsButton")  # keys may go into a field
    if not processes.wait_until(lambda: run.client.find("Timeline"), 10):
        raise Failure("no timeline for the wall")
    for _ in range(2):
        user.press(run, window, "prevDayButton")
        time.sleep(0.5)
    left, top, width, _ = run.client.first("Timeline")["place"]
    run.hands.click(left + int(width * STRIP_PART), top + 30)
    run.hands.move(5, 5)

    def all_play():
        kinds = [(stream_of(each) or ("", 0, ""))[2] for each in run.client.tiles()]
        return kinds == ["archive"] * run.count and not run.client.find("", "playButton")
    if not processes.wait_until(all_play, RECORDS_SECONDS, 0.5):
        raise Failure("the wall does not play from its records")
    run.say("records: " + run.client.first("", "timeLabel")["text"])
