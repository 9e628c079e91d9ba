#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the client for so many minutes under a seeded plan. See docs/reliability.md."""
import argparse
import random
import shutil
import sys
import os
import traceback

import growth
import processes
from run import Run, fresh_folder
from watch import Failure


def read_arguments():
    parser = argparse.ArgumentParser(prog="scripts/soak", description=__doc__)
    parser.add_argument("minutes", nargs="?", type=float, default=10)
    parser.add_argument("--tiles", type=int, default=16)
    parser.add_argument("--seed", type=int, default=None)
    parser.add_argument("--build", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--keep", default=None, help="where the records of the run are kept")
    parser.add_argument("--no-clock", action="store_true",
                        help="the client's clock doesn't jump")
    parser.add_argument("--test-clips", action="store_true", help=argparse.SUPPRESS)
    return parser.parse_args()


def main():
    options = read_arguments()
    seed = options.seed if options.seed is not None else random.randrange(10 ** 6)
    processes.adopt_orphans()
    folder = fresh_folder("run")
    print(f"== {options.minutes:g} minutes, {options.tiles} tiles, seed {seed}, in {folder}",
          flush=True)
    run, failure = None, None
    try:
        run = Run(options.build, folder, options.tiles, seed, not options.test_clips,
                  not options.no_clock)
        run.start()
        run.drive(options.minutes * 60)
        growth.judge(run.watch.lives(), options.minutes * 60)
        run.leave()
    except Failure as caught:
        failure = str(caught)
    except Exception:  # whatever it is, the run is stopped and read
        failure = traceback.format_exc()
    if run and failure:
        run.say(f"FAILED: {failure}")
        run.keep_evidence()
    if run:
        run.stop()
    keep = options.keep or (failure and os.path.join(os.path.dirname(options.build), "soak-failed"))
    if keep:
        shutil.rmtree(keep, ignore_errors=True)
        shutil.copytree(folder, keep, ignore=shutil.ignore_patterns("eyes", "runtime"))
    shutil.rmtree(os.path.dirname(folder), ignore_errors=True)
    if failure:
        print(f"FAILED: {failure}\n(seed {seed}; see {keep})", file=sys.stderr)
        return 1
    print(f"== held for {options.minutes:g} minutes with {options.tiles} tiles, seed {seed}; "
          f"longest wait for a picture {run.watch.longest_dark:.0f} s")
    return 0


if __name__ == "__main__":
    sys.exit(main())
