# SPDX-License-Identifier: Apache-2.0
"""Outgoing calls, and the check of a layout."""
import json
import math
import statistics

from figures import plain, ratio
from presses import in_turn
from processes import output


def commands(programs, size):
    """start_foot_touch() beside the stub's program_run."""
    runs = in_turn(size.rounds, lambda side: programs.run(
        f"{side}_caller", size.presses)["p50_ns"] / 1e3)
    return [ratio("start_foot_touch p50", "≤ 1.03", runs["library"], runs["bare"], "µs")]


def layouts(programs, size):
    """Sending a layout, without the check and the copy."""
    figures, sent = [], {}
    for count, calls in size.layouts.items():
        runs = in_turn(size.some, lambda side, c=count, n=calls: programs.run(
            f"{side}_caller", n, c)["p50_ns"] / 1e3)
        figures.append(ratio(f"layout of {count:,} buttons sent", "≤ 1.10", runs["library"],
                             runs["bare"], "µs"))
        sent[count] = runs["library"]
    few, some, many = sorted(sent)
    # What every call takes is left out: it would hide how the rest grows.
    growth = [(large - small) / (many - few) / ((middle - small) / (some - few))
              for small, middle, large in zip(sent[few], sent[some], sent[many])]
    figures.append(plain(f"a button more, of {many:,} / of {some:,}", "≤ 1.10", growth, ""))
    return figures


def check_us(programs, size, sides):
    """check_buttons() of layouts in order ("library") and "shuffled", and a "plain" double loop."""
    out = output(*programs.on_one_core, programs.path("layout_check"), "--benchmark_format=json",
                 f"--benchmark_filter=/({sides})/", f"--benchmark_repetitions={size.some}",
                 f"--benchmark_min_time={size.check_s}",
                 "--benchmark_enable_random_interleaving=true")
    durations = {}
    for run in json.loads(out)["benchmarks"]:
        if run["run_type"] == "iteration":
            _, side, count = run["name"].split("/")[:3]
            durations.setdefault((side, int(count)), []).append(run["real_time"] / 1e3)
    return durations


def checks(programs, size):
    """check_buttons() beside a plain double loop."""
    durations = check_us(programs, size, "library|plain")
    return [ratio(f"layout of {count:,} buttons checked", goal, durations["library", count],
                  durations["plain", count], "µs")
            for count, goal in ((10, "≤ 1.2"), (100, "≤ 0.5"), (1000, "≤ 0.1"), (10000, "≤ 0.02"))]


def by_buttons(programs, size):
    """For each number of buttons: check_buttons() and foot_touch_set_buttons()."""
    checked = check_us(programs, size, "library|shuffled|plain")
    rows = []
    for count in sorted({count for _, count in checked}):
        row = {"buttons": count}
        for side in ("library", "shuffled", "plain"):
            row[side] = statistics.median(checked.get((side, count), [math.nan]))
        whole = programs.run("set_buttons", 10, count)
        # The display accepts no more than 4 MiB.
        row["set"] = whole["p50_ns"] / 1e3 if whole["result"] == 0 else math.nan
        rows.append(row)
    return rows
