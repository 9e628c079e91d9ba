# SPDX-License-Identifier: MIT
"""How figures are told."""
import statistics


def say(what, figure):
    print(f"{what:60} {figure}", flush=True)


def spread(values, unit="ms"):
    if not values:
        return "none"
    return f"{statistics.median(values):.1f} {unit}, at most {max(values):.1f}"
