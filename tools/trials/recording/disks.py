# SPDX-License-Identifier: MIT
"""Disks in files, that are cut off or full. They need root."""
import os
import random
import subprocess
import sys
import time

from trials import segments
from trials.cameras import Cameras
from trials.recording.judge import clip, longest_gap, lost, pictures_of
from trials.server import Server
from trials.system import await_that

POWER_CUT_LOSES = 10.0  # seconds
ROOM_SHARE = 0.02  # of the disk, by which keep_free may be missed
GROUP_MS = 2000  # from key picture to key picture, in the clip
MIB = 1 << 20
KEEP_MIB, CLOSE_MIB = 20, 8
FILLED_SECONDS, AFTERWARDS_SECONDS = 20, 30


class Disk:
    """A file system in a file. `image`: one that is there."""

    def __init__(self, image, mount, megabytes=0, kind="ext4"):
        self.image, self.mount = image, mount
        if megabytes:
            with open(image, "wb") as out:
                out.truncate(megabytes * MIB)
            self.run(f"mkfs.{kind}", "-q", *(["-m", "0"] if kind == "ext4" else []), image)
        mount.mkdir(exist_ok=True)
        self.run("mount", "-o", "loop", image, mount)

    @staticmethod
    def run(*command):
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode != 0:
            sys.exit(f"{command[0]}: {done.stderr}")

    def copy_as_cut_off(self, to):
        """The disk as it is at one moment, which is returned. Its file must be on a file system
        that clones files."""
        moment = time.monotonic()
        self.run("cp", "--reflink=always", self.image, to)
        return moment

    def free(self):
        facts = os.statvfs(self.mount)
        return facts.f_bavail * facts.f_frsize

    def size(self):
        facts = os.statvfs(self.mount)
        return facts.f_blocks * facts.f_frsize

    def close(self):
        self.run("umount", self.mount)
        self.image.unlink()


def cut_off(folder, chosen):
    clones = Disk(folder / "clones.img", folder / "clones", 3000, "xfs")
    disk = Disk(clones.mount / "disk.img", folder / "disk", 600)
    cameras = Cameras(clip(folder), [f"C{i}" for i in range(4)])
    server = Server(folder, cameras.sections(), disk.mount / "archive")
    server.start()
    cameras.await_recorded()
    worst, whole = 0, 0
    for _ in range(chosen.times):
        time.sleep(random.uniform(10, 20))
        finished = {camera: segments.files(server.archive, camera, "*+*.mkv")
                    for camera in cameras.names}
        until = disk.copy_as_cut_off(clones.mount / "copy.img")
        copy = Disk(clones.mount / "copy.img", folder / "copy")
        restarted = Server(folder / "again", "[camera X]\nurl = file:/nothing\n",
                           copy.mount / "archive")
        restarted.start()
        for camera in cameras.names:
            files = segments.files(restarted.archive, camera, "*.mkv")
            starts = [segments.start_of(path) for path in files]
            whole += len(finished[camera])
            if any(segments.start_of(one) not in starts for one in finished[camera]):
                sys.exit(f"{camera}: a finished segment is missing")
            recorded = [picture for path in files for picture in pictures_of(path)]
            worst = max(worst, lost(cameras.sent[camera], until, recorded, camera))
        restarted.end()
        copy.close()
    server.end()
    disk.close()
    clones.close()
    print(f"{chosen.times} power cuts: {worst:.1f} s lost at most; none of {whole} finished "
          "segments")
    return worst <= POWER_CUT_LOSES


def fill(disk):
    """From outside, all that is left, for a while. How many MiB that was."""
    filler = disk.mount / "filler"
    with open(filler, "wb", buffering=0) as out:
        until = time.monotonic() + FILLED_SECONDS
        while time.monotonic() < until:
            try:
                out.write(bytes(MIB))
            except OSError:
                time.sleep(0.1)
    taken = filler.stat().st_size // MIB
    filler.unlink()
    return taken


def full(folder, chosen):
    disk, keep = Disk(folder / "disk.img", folder / "disk", 300), KEEP_MIB * MIB
    cameras = Cameras(clip(folder), [f"C{i}" for i in range(8)])
    server = Server(folder, cameras.sections(), disk.mount / "archive",
                    f"keep_free = {KEEP_MIB}M")
    server.start()
    cameras.await_recorded()
    await_that(lambda: disk.free() < keep + CLOSE_MIB * MIB, "the disk doesn't fill", 300)
    end, least, longest = time.monotonic() + 60 * chosen.minutes, keep, 0
    while time.monotonic() < end:
        time.sleep(0.2)
        least = min(least, disk.free())
        if random.random() < 0.001:
            longest = max(longest, longest_gap(server.archive, cameras.names))
    longest = max(longest, longest_gap(server.archive, cameras.names))
    taken = fill(disk)
    time.sleep(AFTERWARDS_SECONDS)
    runs = server.process.poll() is None
    before = {camera: len(cameras.sent[camera]) for camera in cameras.names}
    await_that(lambda: all(len(cameras.sent[one]) > before[one] for one in before),
               "pictures aren't fetched any more", 60)
    newest = min(segments.start_of(segments.files(server.archive, camera)[-1])
                 for camera in cameras.names)
    age = time.time() - newest
    after = longest_gap(server.archive, cameras.names)
    server.end()
    missed = max(keep - least, 0) / disk.size()
    dropped = server.log.read_text().count("dropped")
    disk.close()
    print(f"{chosen.minutes} minutes on a full disk: {missed:.2%} of it less free than asked, at "
          f"most; longest gap {longest} ms. With {taken} MiB taken from outside: runs on: {runs}, "
          f"longest gap {after} ms, {dropped} lines of dropped pictures, all cameras' newest "
          f"segments began {age:.0f} s ago or later")
    return runs and missed <= ROOM_SHARE and longest <= GROUP_MS
