# SPDX-License-Identifier: MIT
"""The demo service of a run, and what its control interface makes of it."""
import datetime
import http.client
import json
import os
import random
import subprocess
import time

import processes

READY_SECONDS = 300  # the first start on a machine draws and encodes its clips
CONTROL_SECONDS = 600  # more than the machine may hold everything up
ARCHIVE_DAYS = 8  # a storm goes back by up to three, a calm by two more
LAN_CAMERAS = 3     # of the one LAN server that the demo makes
GAPS_EVERY = 4      # the archive of every fourth camera has gaps
WHOLE_MINUTES = 12 * 60  # of each day that every camera has recorded


class World:
    """One process at a time; each one after the first takes the ports of the first."""

    def __init__(self, folder, programs, cameras, seed, full_rate):
        self.folder = folder
        self.program = os.path.join(programs, "zorvane-demo")
        self.options = ["--data", os.path.join(folder, "service"),
                        "--seed", str(seed), "--plain", "--servers", "1",
                        "--cameras", str(max(1, cameras - LAN_CAMERAS)), "--lan-servers", "1"]
        self.options += ["--clips", os.environ.get("ZORVANE_CLIP_CACHE")
                         or os.path.join(programs, "../demo-clips")]
        if not full_rate:
            self.options += ["--test-clips"]
        self.process = None
        self.ready = None
        self.cameras = []
        self.faults = {}       # number: what it hits
        self.log = open(os.path.join(folder, "service.log"), "ab")

    def start(self):
        options = list(self.options)
        if self.ready:
            for name in ("api", "streaming", "flv", "control"):
                options += [f"--{name}-port", str(self.ready[name])]
            options += ["--lan-ports", ",".join(str(port) for port in self.ready["lan"])]
        else:
            options += ["--write-config", os.path.join(self.folder, "run")]
        deadline = time.monotonic() + READY_SECONDS
        while time.monotonic() < deadline:
            self.process = subprocess.Popen([self.program] + options, stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, stderr=self.log,
                                            preexec_fn=processes.end_with_parent)
            line = self.process.stdout.readline()
            if line:
                break
            self.process.wait()  # a connection of somebody else's may hold a port for a moment
            time.sleep(0.2)
        else:
            raise RuntimeError("the demo service did not start (see service.log)")
        self.ready = json.loads(line)
        self.faults = {}
        self.cameras = self.list_cameras()
        self.make_steady()

    def list_cameras(self):
        found = []
        for server in self.control("GET", "/world")["servers"]:
            for camera in server["cameras"]:
                found.append({"server": server["id"], "camera": camera["id"],
                              "name": camera["name"], "number": camera["number"],
                              "lan": server.get("lan", False), "serverName": server["name"]})
        return found

    def make_steady(self):
        """Most cameras record round the clock; the others in the morning, and now and then."""
        today = datetime.datetime.now().replace(hour=0, minute=0, second=0, microsecond=0)
        days = [today + datetime.timedelta(days=day) for day in range(-ARCHIVE_DAYS, 1)]
        dice = random.Random(0)
        for place, camera in enumerate(self.cameras):
            camera["steady"] = camera["lan"] or place % GAPS_EVERY != 0
            records = [piece for day in days
                       for piece in (pieces(day, [(0, 24 * 60)]) if camera["steady"]
                                     else pieces(day, with_gaps(dice)))]
            self.post("/cameras/archive", server=camera["server"], camera=camera["camera"],
                      records=records)

    def is_up(self):
        return self.process is not None and self.process.poll() is None

    def kill(self, number):
        if self.is_up():
            self.process.send_signal(number)
            self.process.wait()
        self.faults = {}

    def stop(self):
        processes.end(self.process)

    def control(self, method, path, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.ready["control"], timeout=CONTROL_SECONDS)
        try:
            connection.request(method, path, json.dumps(body) if body is not None else None,
                               {"Content-Type": "application/json"})
            return json.loads(connection.getresponse().read())
        finally:
            connection.close()

    def post(self, path, **body):
        return self.control("POST", path, body)

    def add_fault(self, hits=None, **fault):
        """`hits` is the server and camera, where the fault is about one."""
        answer = self.post("/faults/add", **fault)
        if "fault" not in answer:
            raise RuntimeError(f"{fault}: {answer}")
        self.faults[answer["fault"]] = dict(fault, hits=hits)

    def clear_faults(self):
        if self.is_up():
            self.post("/faults/clear")
        self.faults = {}

    def camera(self, server, number):
        for camera in self.cameras:
            if camera["server"] == server and camera["camera"] == number:
                return camera
        return None


def with_gaps(dice):
    """Minutes of a day: its first half, then pieces."""
    result, minute = [(0, WHOLE_MINUTES)], WHOLE_MINUTES + dice.randint(1, 60)
    while minute < 24 * 60 - 60:
        end = minute + dice.randint(1, 60)
        result.append((minute, end))
        minute = end + dice.randint(1, 60)
    return result


def pieces(day, minutes):
    """As the service has them: first and last millisecond."""
    return [[int((day + datetime.timedelta(minutes=each)).timestamp() * 1000) - less
             for each, less in ((begin, 0), (end, 1000))] for begin, end in minutes]
