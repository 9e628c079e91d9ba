# SPDX-License-Identifier: MIT
"""What the benchmarks of the server share: clips, cameras, the server itself, streams as they
arrive, and the table that is printed."""
import collections
import contextlib
import os
import pathlib
import socket
import statistics
import subprocess
import tempfile
import threading
import time

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
PROGRAM = pathlib.Path(os.environ.get("ZORVANE_SERVER",
                                      PROJECT / "build/release/bin/zorvane-server"))
PLAYER = PROGRAM.parent / "vlc-stream"
CPU_CLOCK = 2  # of a process: the time that it was running, as exactly as it is known
PICTURE = 9
FRAME_FILE_BYTES = 12_582_912
PICTURES_PER_SECOND = 25
CLIP_SECONDS = 20
TAIL_BYTES = 32
PATIENCE_SECONDS = 20

Tag = collections.namedtuple("Tag", "at kind stamp body")


def picture_id(data):
    """A picture ends in the same way however its units are packed; noise makes it unmistakable."""
    return bytes(data[-TAIL_BYTES:]).hex()


def clip(size, rate, group):
    """A moving, noisy picture with AAC; made once."""
    folder = pathlib.Path(os.environ.get("ZORVANE_CLIP_CACHE", "."))
    path = folder / f"server-{size}-{rate}-{group}.mp4"
    if not path.exists():
        part = path.with_suffix(".part.mp4")
        subprocess.run(
            ["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
             f"testsrc2=s={size}:r={PICTURES_PER_SECOND},noise=alls=12:allf=t", "-f", "lavfi",
             "-i", "anoisesrc=r=16000:a=0.1", "-t", str(CLIP_SECONDS), "-c:v", "libx264", "-preset",
             "ultrafast", "-bf", "0", "-pix_fmt", "yuv420p", "-g", str(group),
             "-sc_threshold", "0", "-b:v", rate, "-minrate", rate, "-maxrate", rate, "-bufsize",
             "1M", "-c:a", "aac", "-b:a", "48k", part], check=True)
        os.rename(part, path)
    return path


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


@contextlib.contextmanager
def running(*command, **options):
    """A process, which ends with the block."""
    process = subprocess.Popen([str(word) for word in command], **options)
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def cpu_seconds(process):
    """Of all its threads, those that have ended too, by the clock that the system keeps for it."""
    return time.clock_gettime((~process.pid << 3) | CPU_CLOCK)


def await_that(condition, what):
    deadline = time.monotonic() + PATIENCE_SECONDS
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(0.05)


class Cameras:
    """Clips as cameras over RTSP. With `tells` it is known when a picture left which camera."""

    def __init__(self, clips, copies=1, tells=False):
        self.command = [PROJECT / "tools/rtsp-cameras", "--port", "0", "--copies", copies, *clips]
        self.count, self.tells = copies * len(clips), tells
        self.left, self.newest = {}, None  # time by picture, and which was the last
        self.news = threading.Condition()

    def __enter__(self):
        self.running = running(*self.command, *(["--tell"] if self.tells else []),
                               stdout=subprocess.PIPE, text=True)
        self.process = self.running.__enter__()
        self.addresses = [self.process.stdout.readline().strip() for _ in range(self.count)]
        threading.Thread(target=self._listen, daemon=True).start()
        return self

    def __exit__(self, *failure):
        return self.running.__exit__(*failure)

    def _listen(self):
        for line in self.process.stdout:
            at, picture = line.split()
            with self.news:
                self.left[picture] = float(at)
                self.newest = picture
                self.news.notify_all()

    @staticmethod
    def is_of(tag, picture):
        return picture_id(tag.body) == picture

    def left_at(self, tag):
        """Waits for it: the camera's line may come later than the picture. None when no camera has
        sent that picture."""
        picture = picture_id(tag.body)

        def is_known():
            return tag.at - CLIP_SECONDS / 2 < self.left.get(picture, 0)

        with self.news:
            return self.left[picture] if self.news.wait_for(is_known, 1) else None


class House:
    """zorvane-server, recording cameras of these addresses to a folder of its own."""

    def __init__(self, folder, addresses, more=""):
        self.folder, self.port = pathlib.Path(folder).absolute(), free_port()
        self.archive = self.folder / "archive"
        sections = "".join(f"[camera C{i}]\nurl = {url}\n{more}" for i, url in enumerate(addresses))
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / "conf").write_text(
            f"[service]\nstate = {self.folder}/state\nport = {free_port()}\n"
            f"cameras_port = {self.port}\n"
            f"[archive]\nfolder = {self.archive}\nkeep_free = 0%\n{sections}")
        subprocess.run([PROGRAM, "prepare", self.archive], check=True)

    def __enter__(self):
        self.running = running(PROGRAM, "--config", self.folder / "conf",
                               stderr=subprocess.DEVNULL)
        self.process = self.running.__enter__()
        await_that(self._answers, "the server doesn't answer")
        return self

    def __exit__(self, *failure):
        return self.running.__exit__(*failure)

    def _answers(self):
        with contextlib.suppress(OSError):
            self.password = (self.folder / "state/password").read_text().strip()
            with self.connect("/nothing?") as one:
                return one.recv(1) != b""
        return False

    def url(self, path, camera=1):
        return (f"http://127.0.0.1:{self.port}{path}&server=1&camera={camera}"
                f"&sessionId={self.password}")

    def connect(self, path, camera=1):
        one = socket.create_connection(("127.0.0.1", self.port))
        target = self.url(path, camera).split(str(self.port), 1)[1]
        one.sendall(f"GET {target} HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n".encode())
        return one

    def await_live(self, camera=1):
        def is_live():
            with self.connect("/flv/live?q=2", camera) as one:
                return len(one.makefile("rb").read(1024)) == 1024

        await_that(is_live, "the server has no pictures")


class Relay:
    """The peer for live: GStreamer, which takes the camera and hands it to all who connect, from
    the newest key picture on. Sound, where it is wanted, becomes MP3, once for all."""

    def __init__(self, address, sound=False):
        self.port = free_port()
        chain = (f"rtspsrc name=camera location={address} protocols=tcp latency=0 "
                 "flvmux name=mux streamable=true ! tcpserversink host=127.0.0.1 "
                 f"port={self.port} sync-method=latest-keyframe recover-policy=keyframe "
                 "buffers-min=600 sync=false "
                 "camera. ! rtph264depay ! h264parse ! mux. ")
        if sound:
            chain += ("camera. ! rtpmp4gdepay ! aacparse ! avdec_aac ! audioconvert ! "
                      "audioresample ! audio/x-raw,channels=1 ! queue ! lamemp3enc target=bitrate "
                      "bitrate=32 encoding-engine-quality=fast ! mpegaudioparse ! mux.")
        self.command = ["gst-launch-1.0", "-q", *chain.split()]

    def __enter__(self):
        self.running = running(*self.command, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
        self.process = self.running.__enter__()
        await_that(self.is_live, "the relay sends nothing")
        return self

    def __exit__(self, *failure):
        return self.running.__exit__(*failure)

    def connect(self, *_):
        return socket.create_connection(("127.0.0.1", self.port))

    def is_live(self):
        with contextlib.suppress(OSError), self.connect() as one:
            one.settimeout(PATIENCE_SECONDS)
            return len(one.makefile("rb").read(1024)) == 1024
        return False


def flv_tags(stream, chunked):
    """The tags of an FLV stream as they arrive: over HTTP in chunks, or as they are."""
    while chunked and stream.readline().strip():
        pass
    data = bytearray()

    def need(size):
        while len(data) < size:
            if chunked:
                more = stream.read(int(stream.readline() or b"0", 16))
                stream.readline()
            else:
                more = stream.read1(1 << 16)
            if not more:
                return False
            data.extend(more)
        return True

    if not need(13):
        return
    del data[:13]
    while need(11):
        size = int.from_bytes(data[1:4], "big")
        if not need(15 + size):
            return
        stamp = int.from_bytes(data[4:7], "big") | data[7] << 24
        yield Tag(time.monotonic(), data[0], stamp, bytes(data[11:11 + size]))
        del data[:15 + size]


def flv_pictures(stream, chunked):
    return (tag for tag in flv_tags(stream, chunked) if tag.kind == PICTURE and tag.body[1] == 1)


def shown_after(url, below):
    """Milliseconds from the start of the client's player to its first picture."""
    with tempfile.NamedTemporaryFile(dir=below) as frame:
        os.truncate(frame.name, FRAME_FILE_BYTES)
        begun = time.monotonic()
        with running(PLAYER, url, pathlib.Path(frame.name).name, stdin=subprocess.PIPE,
                     stdout=subprocess.PIPE, env={**os.environ, "TMPDIR": str(below)}) as player:
            if any(line == b"frame\n" for line in player.stdout):
                return (time.monotonic() - begun) * 1000
    raise RuntimeError("the player shows nothing")


class Table:
    """Rows of the server's figure, its peer's and the limit."""

    def __init__(self, title, peer):
        self.good = True
        print(f"\n{title}\n{'':52}{'server':>10}{peer:>12}{'ratio':>8}{'limit':>8}", flush=True)

    def row(self, what, ours, peer=None, limit=None, digits=1):
        def cell(value, width, places=digits):
            return f"{value:{width}.{places}f}" if value is not None else " " * width

        ratio = ours / peer if peer else None
        print(f"{what:52}{cell(ours, 10)}{cell(peer, 12)}{cell(ratio, 8, 2)}"
              f"{cell(limit, 8, 2)}", flush=True)
        self.good = self.good and (limit is None or ours <= limit)

    def spread(self, what, ours, peer=None, limit=None):
        """Two rows: the medians, which the limit is for, and the largest."""
        self.row(what, statistics.median(ours), statistics.median(peer) if peer else None, limit)
        self.row(f"{'at most':>{len(what)}}", max(ours), max(peer) if peer else None)
