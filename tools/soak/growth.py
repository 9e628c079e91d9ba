# SPDX-License-Identifier: MIT
"""Whether a client grew: judged over the rows at rest of each process that lived long enough."""
import statistics

from watch import JUDGED_SECONDS, LEAST_ROWS, MIB, MORE_LIMITS, SLOPE_LIMIT, Failure, slope


def judge(lives, seconds):
    if not lives and seconds >= JUDGED_SECONDS:
        raise Failure("no process lived long enough for its growth to be judged")
    if not lives:
        print(f"growth is judged from {LEAST_ROWS} rows at rest on")
    for rows in lives:
        judge_memory(rows)
        judge_counts(rows)


def judge_memory(rows):
    own, heap = (slope([(row["seconds"], row[what]) for row in rows]) for what in ("own", "heap"))
    print(f"growth over {len(rows)} rows at rest: own memory {own / MIB:+.1f} MiB an hour, "
          f"heap {heap / MIB:+.1f} MiB an hour (limit {SLOPE_LIMIT / MIB:.0f})")
    if max(own, heap) > SLOPE_LIMIT:
        raise Failure("the client grows")


def judge_counts(rows):
    third = len(rows) // 3
    more = {what: statistics.median(row[what] for row in rows[-third:])
            - statistics.median(row[what] for row in rows[:third]) for what in MORE_LIMITS}
    print("last third of them against the first: "
          + ", ".join(f"{what} {more[what]:+g} (limit {limit})"
                      for what, limit in MORE_LIMITS.items()))
    for what, limit in MORE_LIMITS.items():
        if more[what] > limit:
            raise Failure(f"{more[what]:g} {what} more than at first")
