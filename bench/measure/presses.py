# SPDX-License-Identifier: Apache-2.0
"""Presses: how long they are on their way, how many a second, and how that goes with the load."""
import statistics

from figures import plain, quantile, ratio
from progress import PROGRESS

SIDES = ("library", "bare")


def in_turn(rounds, measure, sides=SIDES):
    """Calls measure(side) for all sides in each round, the first one in turn; lists by side."""
    values = {side: [] for side in sides}
    for number in range(rounds):
        PROGRESS.round(number + 1, rounds)
        for side in sides if number % 2 else reversed(sides):
            values[side].append(measure(side))
    return values


def press(programs, side, *options, sleep_ms=0, formats_log=False):
    """Fresh server, fresh recogniser: what both print, times in microseconds."""
    with programs.started(f"{side}_server", sleep_ms, formats_log=formats_log) as server:
        server.next_line()
        client = programs.run("recogniser", *options)
        transit = server.finish()
    return {"p50": client["p50_ns"] / 1e3, "p99": client["p99_ns"] / 1e3,
            "rate": client["presses_per_s"], "callback": transit["p50_ns"] / 1e3}


def column(runs, key):
    """One value of every run, by side."""
    return [[run[key] for run in runs[side]] for side in SIDES]


def latency(programs, size):
    """One recogniser, one press after the other."""
    def one(side, **how):
        return press(programs, side, "--presses", size.presses, **how)

    measures = {
        "library": lambda: one("library"),
        "bare": lambda: one("bare"),
        "formatted": lambda: one("library", formats_log=True),
        "once more": lambda: one("bare"),
        "tcp": lambda: {"p50": programs.run("tcp", size.presses)["p50_ns"] / 1e3},
    }
    runs = in_turn(size.rounds, lambda name: measures[name](), tuple(measures))
    p50 = {name: [run["p50"] for run in runs[name]] for name in measures}
    figures = [
        ratio("press, round trip p50, log silent", "≤ 1.03", *column(runs, "p50"), "µs"),
        ratio("press, round trip p50, its log lines formatted", "≤ 1.06", p50["formatted"],
              p50["bare"], "µs"),
        ratio("press, round trip p99, log silent", "≤ 1.10", *column(runs, "p99"), "µs"),
        ratio("press to callback p50, log silent", "≤ 1.03", *column(runs, "callback"), "µs"),
        ratio("(bare gRPC beside itself, p50)", "", p50["once more"], p50["bare"], "µs"),
        ratio("(plain TCP beside bare gRPC, p50)", "", p50["tcp"], p50["bare"], "µs"),
    ]
    middle = {name: statistics.median(values) for name, values in p50.items()}
    figures[0].parts = {
        "plain TCP": middle["tcp"],
        "gRPC": middle["bare"] - middle["tcp"],
        "library": max(0, middle["library"] - middle["bare"]),
        "three log lines formatted": max(0, middle["formatted"] - middle["library"]),
    }
    return figures


def throughput(programs, size):
    """As many presses as go through one processor, and a callback that takes its time."""
    figures = []
    for clients in (4, 16):
        options = ("--clients", clients, "--presses", size.presses * 4 // clients)
        runs = in_turn(size.rounds, lambda side, o=options: press(programs, side, *o))
        figures.append(ratio(f"presses a second, {clients} clients", "≥ 0.95",
                             *column(runs, "rate"), "/s"))
    options = ("--clients", 16, "--presses", size.sleeps, "--warm-up", 5)
    runs = [press(programs, "library", *options, sleep_ms=20) for _ in range(size.few)]
    figures.append(plain("16 clients, callback sleeps 20 ms, p50 / 20 ms", "≤ 1.10",
                         [run["p50"] / 20e3 for run in runs], ""))
    return figures


def under_load(programs, size):
    """Round trips at rising rates of four recognisers: for each rate and side, the median of the
    rounds and their middle four fifths, of p50 and of p99."""
    rows = []
    for rate in size.rates:
        presses = max(size.least_samples, int(rate * size.load_s)) // 4
        options = ("--clients", 4, "--presses", presses, "--rate", rate)
        runs = in_turn(size.few, lambda side, o=options: press(programs, side, *o))
        row = {"rate": rate}
        for key in ("p50", "p99"):
            for side, values in zip(SIDES, column(runs, key)):
                row |= {f"{side}_{key}": statistics.median(values),
                        f"{side}_{key}_low": quantile(values, 0.1),
                        f"{side}_{key}_high": quantile(values, 0.9)}
        rows.append(row)
    return rows
