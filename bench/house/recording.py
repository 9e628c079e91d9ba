# SPDX-License-Identifier: MIT
"""What recording costs: cameras of 1080p25 at 4 Mbit/s with AAC over RTSP, recorded by
zorvane-server, by a segmenting ffmpeg for each, and by motion, one after the other. Prints a table
and fails when zorvane-server is over its limits."""
import glob
import os
import pathlib
import subprocess
import tempfile
import time

from house.parts import Cameras, House
from trials import clips
from trials.system import cpu_seconds

MOST_CPU_PERCENT = 0.60  # of a core, a camera
MOST_MEMORY_MIB = 48  # of all
MOST_WRITTEN = 1.02  # bytes a byte of video and sound
SETTLE_SECONDS = 10
BLOCK_BYTES = 512


def clip():
    return clips.make(clips.cache() / "server-1080p25-4M.mp4", "1920x1080", "4M", 50,
                      seconds=12, encoder=clips.LIKE_A_CAMERA)


def zorvane(folder, addresses):
    house = House(folder, addresses)
    house.start()
    return [house.process]


def ffmpeg(folder, addresses):
    return [subprocess.Popen(
        ["ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", "tcp", "-i", url, "-c", "copy",
         "-f", "segment", "-segment_time", "300", folder / f"{i}-%03d.mkv"])
        for i, url in enumerate(addresses)]


def motion(folder, addresses):
    common = (f"daemon off\nlog_level 3\ntarget_dir {folder}\nframerate 25\nwidth 1920\n"
              "height 1080\nemulate_motion on\nmovie_output on\nmovie_passthrough on\n"
              "movie_max_time 300\npicture_output off\nwebcontrol_port 0\n")
    for i, url in enumerate(addresses):
        (folder / f"camera{i}.conf").write_text(
            f"camera_id {i + 1}\nnetcam_url {url}\nmovie_filename {i}-%v\n")
        common += f"camera {folder}/camera{i}.conf\n"
    (folder / "conf").write_text(common)
    return [subprocess.Popen(["motion", "-c", folder / "conf"], stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)]


def number(process, file, name):
    for line in pathlib.Path(f"/proc/{process.pid}/{file}").read_text().splitlines():
        if line.startswith(name + ":"):
            return int(line.split()[1])
    raise KeyError(name)


def media_bytes(folder):
    total = 0
    for path in glob.glob(f"{folder}/**/*.m[kp][v4]", recursive=True):
        sizes = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "packet=size", "-of",
                                "csv=p=0", path], capture_output=True, text=True, check=True)
        total += sum(int(line.strip(",")) for line in sizes.stdout.split())
    return total


def measure(start, addresses, seconds, below):
    with tempfile.TemporaryDirectory(dir=below) as name:
        processes = start(pathlib.Path(name), addresses)
        time.sleep(SETTLE_SECONDS)
        begun, before = time.monotonic(), [cpu_seconds(one) for one in processes]
        time.sleep(seconds)
        passed = time.monotonic() - begun
        cpu = sum(cpu_seconds(one) for one in processes) - sum(before)
        memory = sum(number(one, "smaps_rollup", "Pss") for one in processes) / 1024
        for one in processes:
            one.terminate()
        written = 0
        for one in processes:
            _, status, usage = os.wait4(one.pid, 0)
            one.returncode = os.waitstatus_to_exitcode(status)
            written += usage.ru_oublock * BLOCK_BYTES
        media = media_bytes(name)
    return 100 * cpu / passed / len(addresses), memory, written / max(media, 1), media


def run(below, cameras=8, seconds=60, only=None):
    print(f"\nRecording: {cameras} cameras of 1080p25, 4 Mbit/s with AAC over RTSP, "
          f"{seconds} s each")
    print(f"{'':16}{'% of a core':>12}{'memory':>10}{'written':>10}{'recorded':>11}")
    print(f"{'':16}{'a camera':>12}{'MiB':>10}{'a byte':>10}{'MiB':>11}", flush=True)
    good = True
    with Cameras([clip()], cameras) as all_cameras:
        for name, start in (("zorvane-server", zorvane), ("ffmpeg", ffmpeg), ("motion", motion)):
            if only not in (None, name):
                continue
            cpu, memory, written, media = measure(start, all_cameras.addresses, seconds, below)
            print(f"{name:16}{cpu:12.2f}{memory:10.1f}{written:10.3f}{media / 2**20:11.1f}",
                  flush=True)
            if start is zorvane:
                expected = cameras * seconds * 4e6 / 8
                good = (cpu <= MOST_CPU_PERCENT and memory <= MOST_MEMORY_MIB
                        and written <= MOST_WRITTEN and media >= expected * 0.95)
    print(f"limits          {MOST_CPU_PERCENT:12.2f}{MOST_MEMORY_MIB:10.1f}{MOST_WRITTEN:10.3f}")
    return good
