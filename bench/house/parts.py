# SPDX-License-Identifier: MIT
"""What the benchmarks of the server add to what the trials have, too (tools/trials): cameras over
RTSP, a house of them, and the peer for live."""
import contextlib
import socket
import subprocess
import threading

from trials import flv
from trials.clips import CLIP_SECONDS
from trials.server import PROJECT, Server
from trials.system import PATIENCE_SECONDS, await_that, free_port, running


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
        return flv.tail(tag.body) == picture

    def left_at(self, tag):
        """Waits for it: the camera's line may come later than the picture. None when no camera has
        sent that picture."""
        picture = flv.tail(tag.body)

        def is_known():
            return tag.at - CLIP_SECONDS / 2 < self.left.get(picture, 0)

        with self.news:
            return self.left[picture] if self.news.wait_for(is_known, 1) else None


class House(Server):
    """zorvane-server, recording cameras of these addresses to a folder of its own."""

    chunked = True  # how it sends streams

    def __init__(self, folder, addresses, more=""):
        super().__init__(folder, "".join(f"[camera C{i}]\nurl = {url}\n{more}"
                                         for i, url in enumerate(addresses)))


class Relay:
    """The peer for live: GStreamer, which takes the camera and hands it to all who connect, from
    the newest key picture on. Sound, where it is wanted, becomes MP3, once for all."""

    chunked = False

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
