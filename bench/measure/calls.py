# SPDX-License-Identifier: Apache-2.0
"""Outgoing calls, and the check of a layout."""
import json

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


def checks(programs, size):
    """check_buttons() beside a plain double loop."""
    out = output(*programs.on_one_core, programs.path("layout_check"), "--benchmark_format=json",
                 f"--benchmark_repetitions={size.some}", f"--benchmark_min_time={size.check_s}",
                 "--benchmark_enable_random_interleaving=true")
    per_pair = {}
    for run in json.loads(out)["benchmarks"]:
        if run["run_type"] == "iteration":
            _, side, count = run["name"].split("/")[:3]
            per_pair.setdefault((side, int(count)), []).append(1e9 / run["items_per_second"])
    return [ratio(f"layout of {count:,} buttons checked, a pair",
                  "≤ 0.76" if count >= 100 else "≤ 1.02",
                  per_pair["library", count], per_pair["plain", count], "ns")
            for count in (10, 100, 1000, 10000)]
