# SPDX-License-Identifier: Apache-2.0
"""What becomes of measured values: a figure with its goal."""
import dataclasses
import statistics


def quantile(values, share):
    """The value below which a share of 0 to 1 of the values lie; between two of them if need be."""
    ordered = sorted(values)
    position = share * (len(ordered) - 1)
    low = int(position)
    high = min(low + 1, len(ordered) - 1)
    return ordered[low] + (ordered[high] - ordered[low]) * (position - low)


@dataclasses.dataclass
class Figure:
    """One row of the table. `low` and `high` enclose the middle four fifths of what was measured."""

    name: str
    goal: str  # as written in the table: "≤ 1.03"
    value: float
    low: float
    high: float
    unit: str = ""  # of the value; a ratio has none
    library: float = None  # medians of both sides, for a ratio
    bare: float = None
    side_unit: str = ""
    parts: dict = None  # what the library's value is made of

    @property
    def is_met(self):
        """Whether the value keeps to its goal; None without a goal."""
        if not self.goal:
            return None
        bound = float(self.goal.split()[1].replace(",", ""))
        return self.value <= bound if self.goal.startswith("≤") else self.value >= bound


def ratio(name, goal, library, bare, unit):
    """A ratio of medians, from pairs that were measured next to each other."""
    pairs = [mine / other for mine, other in zip(library, bare)]
    middle_library, middle_bare = statistics.median(library), statistics.median(bare)
    return Figure(name, goal, middle_library / middle_bare, quantile(pairs, 0.1),
                  quantile(pairs, 0.9), library=middle_library, bare=middle_bare, side_unit=unit)


def difference(name, goal, library, bare, unit):
    """How much more the library takes, from pairs as well."""
    pairs = [mine - other for mine, other in zip(library, bare)]
    return Figure(name, goal, statistics.median(pairs), quantile(pairs, 0.1), quantile(pairs, 0.9),
                  unit, statistics.median(library), statistics.median(bare), unit)


def plain(name, goal, values, unit, bare=None):
    """A value of the library by itself; that of bare gRPC is for comparison alone."""
    return Figure(name, goal, statistics.median(values), quantile(values, 0.1),
                  quantile(values, 0.9), unit, bare=bare, side_unit=unit)
