# SPDX-License-Identifier: Apache-2.0
"""Presses: how long they are on their way, how many a second, and how that goes with the load."""
import statistics

from figures import plain, ratio

SIDES = ("library", "bare")


def in_turn(rounds, measure):
    """Calls measure(side) for both sides in each round, the first side in turn; lists by side."""
    values = {side: [] for side in SIDES}
    for number in range(rounds):
        for side in SIDES if number % 2 else reversed(SIDES):
            values[side].append(measure(side))
    return values


def press(programs, side, *options, sleep_ms=0, log=None):
    """Fresh server, fresh recogniser: what both tell, times in microseconds."""
    with programs.started(f"{side}_server", sleep_ms, log=log) as server:
        server.told()
        client = programs.tell("recogniser", *options)
        transit = server.finish()
    return {"p50": client["p50_ns"] / 1e3, "p99": client["p99_ns"] / 1e3,
            "rate": client["presses_per_s"], "callback": transit["p50_ns"] / 1e3}


def column(runs, key):
    """One value of every run, by side."""
    return [[run[key] for run in runs[side]] for side in SIDES]


def latency(programs, size):
    """One recogniser, one press after the other."""
    options = ("--presses", size.presses)
    silent = in_turn(size.rounds, lambda side: press(programs, side, *options))
    formatted = in_turn(size.rounds, lambda side: press(
        programs, side, *options, log="format"))
    tcp = [programs.tell("tcp", size.presses)["p50_ns"] / 1e3 for _ in range(5)]
    _, bare = column(silent, "p50")
    return [
        ratio("press, round trip p50, log silent", "≤ 1.03", *column(silent, "p50"), "µs"),
        ratio("press, round trip p50, log lines formatted", "≤ 1.06", *column(formatted, "p50"),
              "µs"),
        ratio("press, round trip p99, log silent", "≤ 1.10", *column(silent, "p99"), "µs"),
        ratio("press to callback p50, log silent", "≤ 1.03", *column(silent, "callback"), "µs"),
        ratio("plain TCP round trip p50 / bare press", "", tcp, bare[:len(tcp)], "µs"),
    ]


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
    """Round trips at rising rates of four recognisers: rows of rate, and p50 and p99 of each side."""
    rows = []
    for rate in size.rates:
        presses = max(50, int(rate * size.load_s / 4))
        options = ("--clients", 4, "--presses", presses, "--rate", rate)
        runs = in_turn(size.few, lambda side, o=options: press(programs, side, *o))
        rows.append({"rate": rate, **{
            f"{side}_{key}_us": statistics.median(run[key] for run in runs[side])
            for side in SIDES for key in ("p50", "p99")}})
    return rows
