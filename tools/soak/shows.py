#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Shows two faults as tables: children that crash in archive play, and a full temporary folder.

The second one mounts a small disk and so has to be root. See docs/reliability.md.
"""
import argparse
import os
import random
import shutil
import subprocess
import sys
import time

import outside
import processes
import user
from run import Run, fresh_folder
from watch import Failure

TILES = 9
SMALL_DISK, LARGE_DISK = "20m", "300m"
PATIENCE_SECONDS = 120
CLOCK_SECONDS = 3  # from a crash until the clock of the grid goes on


def playing(run):
    """Tiles that show a picture, by what the strip in it says."""
    return {tile["id"]: tile["strip"] for tile in run.client.tiles()
            if "strip" in tile and not tile.get("spinner")}


def wait_for(run, condition, what):
    began = time.monotonic()
    if not processes.wait_until(condition, PATIENCE_SECONDS, 0.1):
        run.keep_evidence()
        raise Failure(what)
    return time.monotonic() - began


def moving(run, tile, before):
    """A function that is true once the tile shows another picture than `before`."""
    return lambda: playing(run).get(tile, before) != before


def clock(run):
    return run.client.first("", "timeLabel")["text"]


def crashes(run):
    print("| Signal | clock of the grid goes on after | the tile shows a new picture after |")
    print("|---|---|---|")
    window = run.client.main_windows()[0]
    run.hands.raise_window(window["window"])
    run.hands.key("r")
    processes.wait_until(lambda: run.client.find("Timeline"), 10)
    for _ in range(2):
        user.press(run, window, "prevDayButton")
        time.sleep(1)
    left, top, width, _ = run.client.first("Timeline")["place"]
    run.hands.click(left + width // 3, top + 30)
    run.hands.move(5, 5)
    wait_for(run, lambda: len(playing(run)) == TILES, "not all play from the archive")
    time.sleep(5)
    for number in outside.CRASHES:
        tiles = run.client.tiles()
        tile = random.choice(tiles)
        old, picture, shown = int(tile["player"]), tile["strip"], clock(run)
        os.kill(old, number)
        began = time.monotonic()
        went_on, again, at_crash = None, None, None
        while time.monotonic() - began < PATIENCE_SECONDS and not (went_on and again):
            now = time.monotonic() - began
            if at_crash is None and now > 0.1:
                at_crash = clock(run)  # what was on its way has come
            elif at_crash and not went_on and clock(run) != at_crash:
                went_on = now
            one = next(each for each in run.client.tiles() if each["id"] == tile["id"])
            if not again and int(one.get("player", old)) != old and "strip" in one \
                    and not one["spinner"] and one["strip"] != picture:
                again = now
            time.sleep(0.05)
        if not went_on or not again:
            run.keep_evidence()
            raise Failure(f"after {number.name}: clock {went_on}, tile {again}")
        print(f"| {number.name} | {went_on:.1f} s | {again:.1f} s |", flush=True)
        if went_on > CLOCK_SECONDS:
            raise Failure(f"after {number.name} the clock stood for {went_on:.1f} s")
        time.sleep(6)


def mount(run, size, *options):
    subprocess.run(["mount", "-t", "tmpfs", "-o", ",".join([*options, f"size={size}"]), "tmpfs",
                    run.client.temporary], check=True)


def full_disk(run):
    mount(run, SMALL_DISK)
    run.start()
    window = run.client.main_windows()[0]
    run.hands.raise_window(window["window"])
    user.press(run, window, "qualityButton")
    user.choose(run, 2)  # high
    run.hands.move(5, 5)
    time.sleep(40)
    tiles = run.client.tiles()
    shown = playing(run)
    spinning = sum(bool(tile.get("spinner")) for tile in tiles)
    free = shutil.disk_usage(run.client.temporary).free
    run.client.ask("shot", os.path.join(run.folder, "full.png"))
    print(f"| temporary folder of {SMALL_DISK} | {len(tiles)} tiles | {len(shown)} play | "
          f"{spinning} with a spinner | "
          f"client {'lives' if run.client.is_alive() else 'is gone'} | {free} bytes free |")
    mount(run, LARGE_DISK, "remount")
    seconds = wait_for(run, lambda: len(playing(run)) == TILES, "not all play with room")
    print(f"| then {LARGE_DISK} | all {TILES} play after {seconds:.0f} s |")
    if len(shown) >= TILES:
        raise Failure("the folder was not full")
    if spinning:
        raise Failure(f"{spinning} tiles without room show a spinner, and no word")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("what", choices=["crashes", "full-disk"])
    parser.add_argument("--build", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--keep", default="/tmp/zorvane-shows", help=argparse.SUPPRESS)
    options = parser.parse_args()
    processes.adopt_orphans()
    run = Run(options.build, fresh_folder("run"), TILES, 1, full_rate=options.what == "full-disk")
    failure = None
    try:
        if options.what == "crashes":
            run.start()
            crashes(run)
        else:
            full_disk(run)
    except Failure as caught:
        failure = str(caught)
    finally:
        run.stop()
        if options.what != "crashes":
            subprocess.run(["umount", "-l", run.client.temporary], check=False)
        shutil.rmtree(options.keep, ignore_errors=True)
        shutil.move(run.folder, options.keep)
    if failure:
        print(f"FAILED: {failure} (see {options.keep})", file=sys.stderr)
    return int(bool(failure))


if __name__ == "__main__":
    sys.exit(main())
