# SPDX-License-Identifier: MIT
"""What a run looks at every second and every minute, and when it fails."""
import os
import time
from urllib.parse import parse_qs, urlsplit

import processes

GRACE_SECONDS = 11     # for a child without a tile, and a file without a run
PICTURE_SECONDS = 60   # for a new picture of a healthy stream
CLOCK_SECONDS = 30     # in which the clock of a grid in records must move
STALL_SECONDS = 10     # of the client's event loop, less what the machine held everything up
JUDGED_SECONDS = 3600  # a run as long as this must have a process whose growth can be judged
WARM_UP = 0.25         # of the rows of one process, left out of its slope
LEAST_ROWS = 8         # a slope over fewer is not judged
SLOPE_LIMIT = 16 << 20  # bytes an hour, of the client's own memory and of its heap
# More of them in the last third of the rows than in the first; a card of a layout has 11 widgets.
MORE_LIMITS = {"fds": 4, "threads": 2, "maps": 40, "widgets": 150}
MIB = 1 << 20
LAN_SERVER = "1"
RECORDS_UNTIL = "11:50"  # all cameras have records until then, those with gaps too


class Failure(Exception):
    """The run has found a fault."""


def stream_of(tile):
    """Server, camera and kind of what a tile was last asked to play."""
    parts = urlsplit(tile.get("url", ""))
    words = parse_qs(parts.query)
    if "server" not in words:
        return None
    server = words["server"][0]
    if server == LAN_SERVER:  # each LAN server calls itself that
        server = parts.netloc
    return server, int(words["camera"][0]), parts.path.rsplit("/", 1)[-1]


def slope(rows):
    """Least squares over (seconds, value), an hour."""
    count = len(rows)
    mean_x = sum(x for x, _ in rows) / count
    mean_y = sum(y for _, y in rows) / count
    below = sum((x - mean_x) ** 2 for x, _ in rows)
    return 3600 * sum((x - mean_x) * (y - mean_y) for x, y in rows) / below if below else 0.0


class Watch:
    """Looks at tiles, children, files and memory of one client."""

    def __init__(self, client, world, say):
        self.client = client
        self.world = world
        self.say = say
        self.seen = {}         # tile: its history
        self.strays = {}       # child or file without a tile: since when
        self.disturbed = {}    # (server, camera), or None for all: when last
        self.rows = []
        self.dark = 0          # tiles that should show a picture and don't
        self.longest_dark = 0.0
        self.pictures = 0
        self.stopped = set()   # children that were sent SIGSTOP
        self.heartbeat = processes.Heartbeat()
        self.began = time.monotonic()
        self.at_rest = False     # nothing disturbs, and one window shows the whole wall
        self.in_records = False  # so, and plays it from its records
        self.clock = None        # of the grid, and since when

    def disturb(self, what=None):
        self.disturbed[what] = time.monotonic()

    def new_client(self):
        self.seen.clear()
        self.disturb()

    # Every second.

    def look(self):
        now = time.monotonic()
        self.hold_disturbances()
        tiles = self.client.tiles()
        self.look_at_tiles(tiles, now)
        self.look_at_clock(now)
        self.look_at_children(tiles, now)
        self.look_at_files(tiles, now)
        return tiles

    def hold_disturbances(self):
        if not self.world.is_up():
            self.disturb()
        if self.heartbeat.was_held():
            self.disturb()
            self.strays.clear()
        for fault in self.world.faults.values():
            whole = fault.get("listener") in ("api", "streaming") or not fault["hits"]
            self.disturb(None if whole else fault["hits"])
        for camera in self.world.cameras:
            if camera.get("off"):
                self.disturb((camera["server"], camera["camera"]))

    def quiet_since(self, stream):
        return max(self.disturbed.get(None, self.began),
                   self.disturbed.get(stream[:2], self.began) if stream else self.began)

    def look_at_tiles(self, tiles, now):
        paused = {each["window"] for each in self.client.find("", "playButton")}
        # In the archive all wait for the one that is furthest behind.
        archive = {each["window"] for each in tiles if (stream_of(each) or ("", 0, ""))[2] == "archive"}
        present = set()
        self.dark = 0
        for tile in tiles:
            key = tile["id"], tile.get("url", "").split("?")[0]
            present.add(key)
            before = self.seen.setdefault(key, {"since": now, "picture": None, "last": now})
            stream = stream_of(tile)
            if self.has_new_picture(tile, before, stream):
                before["last"] = now
                self.pictures += 1
            since = max(before["last"], self.quiet_since(stream))
            if tile["window"] in archive:
                since = max([since] + [self.quiet_since(stream_of(each)) for each in tiles
                                       if each["window"] == tile["window"]])
            if not self.should_play(tile, stream, tile["window"] in paused):
                before["last"] = now
                continue
            age = now - since
            if age > 10:
                self.dark += 1
            self.longest_dark = max(self.longest_dark, age)
            if age > PICTURE_SECONDS:
                raise Failure(f"no new picture for {age:.0f} s: {describe(tile)}")
        for key in set(self.seen) - present:
            del self.seen[key]

    def has_new_picture(self, tile, before, stream):
        if tile.get("spinner", True) or "picture" not in tile:
            return False
        strip = tile.get("strip")
        if strip and stream and tile.get("player"):
            camera = self.world.camera(*stream[:2])
            if camera and camera["number"] != strip[0]:
                raise Failure(f"the picture of camera {strip[0]}: {describe(tile)}")
        # Small, turned and zoomed ones have no strip that can be read.
        picture = strip or tile["picture"]
        is_new = picture not in (before["picture"], None)
        before["picture"] = picture
        return is_new

    def should_play(self, tile, stream, is_paused):
        if not stream:
            return self.at_rest  # its player was never started
        if tile["place"][2] == 0 or is_paused or not self.world.is_up():
            return False
        camera = self.world.camera(*stream[:2])
        if not camera or camera.get("off"):
            return False
        if stream[2] == "live":
            return True
        # The archive doesn't run over midnight by itself.
        clock = tile.get("cameraTime", "")
        return "00:02" < clock < ("22:00" if camera.get("steady") else RECORDS_UNTIL)

    def look_at_clock(self, now):
        """In records one tile that comes to nothing holds the clock, and with it all others."""
        if not self.in_records:
            self.clock = None
            return
        label = self.client.first("", "timeLabel")
        text = label and label["text"]
        if self.clock is None or self.clock[0] != text:
            self.clock = text, now
        age = now - max(self.clock[1], self.quiet_since(None))
        if age > CLOCK_SECONDS:
            raise Failure(f"the clock of the grid stands at {text} for {age:.0f} s")

    def look_at_children(self, tiles, now):
        known = {int(tile[kind]) for tile in tiles for kind in ("player", "exporter")
                 if kind in tile}
        everyone = processes.everyone()
        strays = set()
        for pid, one in everyone.items():
            if not one["name"].startswith("vlc-stream"):
                continue
            if one["parent"] == self.client.pid:
                if pid not in known and one["state"] != "T":
                    strays.add((pid, one["started"]))
            elif one["parent"] == os.getpid() and one["state"] not in "TZ":
                strays.add((pid, one["started"]))
        for stray in strays:
            age = now - self.strays.setdefault(stray, now)
            if age > GRACE_SECONDS:
                raise Failure(f"child {stray[0]} lives {age:.0f} s without a tile")
        self.drop_old_strays(strays, tuple)

    def look_at_files(self, tiles, now):
        """Every frame file has a tile, and nothing else lies there for long."""
        files = os.listdir(self.client.temporary)
        if len(files) <= len(tiles):
            self.drop_old_strays(set(), str)
            return
        since = self.strays.setdefault("files", now)
        if now - since > GRACE_SECONDS:
            raise Failure(f"{len(files)} temporary files for {len(tiles)} tiles: {files}")

    def drop_old_strays(self, present, kind):
        for stray in [each for each in self.strays if isinstance(each, kind)]:
            if stray not in present:
                del self.strays[stray]

    # Every minute.

    def players(self):
        return [each for each, one in processes.everyone().items()
                if one["parent"] == self.client.pid and one["name"].startswith("vlc-stream")]

    def row(self, tiles):
        pid = self.client.pid
        vitals = self.client.ask("vitals")
        children = self.players()
        log = os.path.join(self.client.run_folder, "zorvane_client_log.txt")
        row = {"seconds": time.monotonic() - self.began, "pid": pid, "rest": False,
               "pss": processes.pss_bytes(pid), "own": processes.own_bytes(pid),
               "heap": int(vitals["heap"]),
               "childPss": sum(map(processes.pss_bytes, children)),
               "widgets": int(vitals["widgets"]),
               "fds": processes.descriptors(pid), "threads": processes.threads(pid),
               "maps": processes.mappings(pid), "children": len(children), "tiles": len(tiles),
               "files": len(os.listdir(self.client.temporary)),
               "log": os.path.getsize(log) if os.path.exists(log) else 0,
               "stall": int(vitals["stall"]),
               "hold": int(1000 * self.heartbeat.take()), "dark": self.dark, "pictures": self.pictures}
        self.rows.append(row)
        self.pictures = 0
        return row

    HEAD = ("| min | PSS MiB | own MiB | heap MiB | widgets | children PSS MiB | fds | threads "
            "| mappings | children/tiles | files | log KiB | stall ms (machine) | dark | new pictures |\n"
            + "|---" * 15 + "|")

    @staticmethod
    def line(row):
        return (f"| {row['seconds'] / 60:.1f} | {row['pss'] / MIB:.1f} "
                f"| {row['own'] / MIB:.1f} | {row['heap'] / MIB:.1f} "
                f"| {row['widgets']} | {row['childPss'] / MIB:.0f} | {row['fds']} "
                f"| {row['threads']} | {row['maps']} | {row['children']}/{row['tiles']} "
                f"| {row['files']} | {row['log'] // 1024} | {row['stall']} ({row['hold']}) | {row['dark']} "
                f"| {row['pictures']} |")

    def judge_stall(self, row):
        seconds = (row["stall"] - row["hold"]) / 1000
        if seconds > STALL_SECONDS:
            raise Failure(f"the client's event loop stood for {seconds:.1f} s")

    def lives(self):
        """The rows at rest, which were measured in the same state, of each process that lived
        long enough."""
        result = []
        for pid in dict.fromkeys(row["pid"] for row in self.rows):
            own = [row for row in self.rows if row["pid"] == pid and row["rest"]]
            own = own[int(len(own) * WARM_UP):]
            if len(own) >= LEAST_ROWS:
                result.append(own)
        return result


def describe(tile):
    stream = stream_of(tile)
    return (f"{tile.get('cameraName')} {stream} at {tile.get('cameraTime')}, spinner "
            f"{tile.get('spinner')}, child {tile.get('player')}, strip {tile.get('strip')}")
