# SPDX-License-Identifier: MIT
"""Cameras of our own, which know when they have sent each picture."""
import http.server
import itertools
import threading
import time
import urllib.parse

from trials import flv
from trials.clips import PICTURE_MS
from trials.system import await_that


class Cameras:
    """Plays a clip over HTTP to whoever comes, in its time, as a camera of each of these names.
    `sent`: moment and checksum of each picture of each camera."""

    def __init__(self, clip, names):
        tags = flv.tags_of(clip)
        self.head = flv.HEADER + b"".join(flv.written(tag.kind, 0, tag.body)
                                          for tag in tags if flv.is_setup(tag))
        self.media = [(tag, flv.checksum(tag) if flv.is_picture(tag) else None)
                      for tag in tags if flv.is_media(tag)]
        self.length_ms = max(tag.stamp for tag in tags if flv.is_picture(tag)) + PICTURE_MS
        self.names = names
        self.forget()
        cameras = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                name = urllib.parse.unquote(self.path.strip("/"))
                if not cameras.is_there(name):
                    self.send_error(503)
                    return
                self.send_response(200)
                self.send_header("Content-Type", "video/x-flv")
                self.end_headers()
                try:
                    cameras.play(name, self.wfile, self.connection)
                except OSError:
                    pass

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.server.daemon_threads = True
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def forget(self):
        self.sent = {name: [] for name in self.names}

    def sections(self):
        port = self.server.server_address[1]
        return "".join(f"[camera {name}]\nurl = http://127.0.0.1:{port}/"
                       f"{urllib.parse.quote(name)}\n" for name in self.names)

    def await_recorded(self, pictures=5):
        await_that(lambda: all(len(sent) > pictures for sent in self.sent.values()),
                   "the server doesn't fetch all cameras' pictures", 60)

    def play(self, name, out, connection):
        sent = self.sent[name]
        out.write(self.head)
        begun = time.monotonic()
        for offset in itertools.count(0, self.length_ms):
            for tag, checksum in self.media:
                stamp = offset + tag.stamp
                wait = begun + stamp / 1000 - time.monotonic()
                if wait > 0:
                    time.sleep(wait)
                if self.breaks_off(name, stamp, connection):
                    return
                at = time.monotonic()
                out.write(flv.written(tag.kind, self.said(name, stamp), tag.body))
                if checksum:
                    sent.append((at, checksum))

    # How a camera may be wrong:

    def is_there(self, name):
        return True

    def breaks_off(self, name, stamp, connection):
        """Before it sends what has that time stamp."""
        return False

    def said(self, name, stamp):
        return stamp
