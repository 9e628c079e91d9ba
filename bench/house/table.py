# SPDX-License-Identifier: MIT
"""The tables of the benchmarks, which judge, too."""
import statistics

OF_A_HUNDRED = 99


def nearly_all(values):
    """What 99 of 100 don't exceed."""
    values = sorted(values)
    return values[(len(values) * OF_A_HUNDRED + 99) // 100 - 1]


# What a limit may be for.
MEDIAN, NEARLY_ALL, AT_MOST = "median", f"{OF_A_HUNDRED} of 100", "at most"
RULES = {MEDIAN: statistics.median, NEARLY_ALL: nearly_all, AT_MOST: max}


class Table:
    """Rows of the server's figure, its peer's and the limit, which stands in the row that it is
    for. `good`: none is over its limit."""

    def __init__(self, title, peer):
        self.good = True
        print(f"\n{title}\n{'':52}{'server':>10}{peer:>12}{'ratio':>8}{'limit':>8}", flush=True)

    def row(self, what, ours, peer=None, limit=None, digits=1):
        def cell(value, width, places=digits):
            return f"{value:{width}.{places}f}" if value is not None else " " * width

        ratio = ours / peer if peer else None
        over = limit is not None and ours > limit
        print(f"{what:52}{cell(ours, 10)}{cell(peer, 12)}{cell(ratio, 8, 2)}{cell(limit, 8, 2)}"
              f"{'  over' * over}", flush=True)
        self.good = self.good and not over

    def spread(self, what, ours, peer=None, limit=None, rule=AT_MOST):
        """A row each of the medians, of what the limit is for, and of the largest."""
        for name in dict.fromkeys((MEDIAN, rule, AT_MOST)):
            of = RULES[name]
            text = f"{what}, {name}" if name == MEDIAN else f"{name:>{len(what) + len(MEDIAN) + 2}}"
            self.row(text, of(ours), of(peer) if peer else None, limit if name == rule else None)
