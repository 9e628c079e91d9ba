#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Measures zorvane-server beside other programs: what recording costs, how soon live is seen, what
its watchers cost, how soon a moment of the archive is seen. Prints tables and fails when
zorvane-server is over its limits."""
import argparse
import os
import pathlib
import signal
import sys

sys.dont_write_bytecode = True
# What is shared with the trials lies there.
sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "tools"))

from house import living, recording, seeking, transport  # noqa: E402

BENCHMARKS = {"recording": recording, "living": living, "transport": transport,
              "seeking": seeking}


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("benchmark", nargs="*", choices=[*BENCHMARKS, []], default=[],
                         help="all when none is named")
    options.add_argument("--cameras", type=int, default=8, help="that are recorded")
    options.add_argument("--seconds", type=int, default=60, help="of recording by each program")
    options.add_argument("--only", choices=["zorvane-server", "ffmpeg", "motion"],
                         help="of the programs that record")
    options.add_argument("--times", type=int, default=20, help="that live is connected to")
    options.add_argument("--delayed", type=int, default=10, metavar="SECONDS",
                         help="for which pictures' delays are taken")
    options.add_argument("--watchers", type=int, default=16, help="of one live stream")
    options.add_argument("--watched", type=int, default=12, metavar="SECONDS",
                         help="of each figure of transport")
    options.add_argument("--sought", type=int, default=6, help="moments of each camera")
    chosen = options.parse_args()
    # Whatever ends it, the programs that it has started end, too.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    arguments = {
        "recording": (chosen.cameras, chosen.seconds, chosen.only),
        "living": (chosen.times, chosen.delayed),
        "transport": (chosen.watchers, chosen.watched),
        "seeking": (chosen.sought,),
    }
    failed = [name for name in chosen.benchmark or BENCHMARKS
              if not BENCHMARKS[name].run(os.getcwd(), *arguments[name])]
    sys.exit("over the limits: " + ", ".join(failed) if failed else 0)


main()
