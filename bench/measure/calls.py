# SPDX-License-Identifier: Apache-2.0
"""What goes out: commands, layouts; and the check of a layout before."""
import json
import subprocess

from figures import plain, ratio
from presses import in_turn


def commands(programs, size):
    """start_foot_touch() beside the stub's program_run."""
    runs = in_turn(size.rounds, lambda side: programs.tell(
        f"{side}_caller", size.presses)["p50_ns"] / 1e3)
    return [ratio("start_foot_touch p50", "≤ 1.03", runs["library"], runs["bare"], "µs")]


def layouts(programs, size):
    """A layout sent, without its check, and what a button more of it costs."""
    figures, per_button = [], {}
    for count, calls in size.layouts.items():
        runs = in_turn(size.some, lambda side, c=count, n=calls: programs.tell(
            f"{side}_caller", n, c)["p50_ns"] / 1e3)
        figures.append(ratio(f"layout of {count:,} buttons sent", "≤ 1.10", runs["library"],
                             runs["bare"], "µs"))
        per_button[count] = [value / count for value in runs["library"]]
    largest, middle = sorted(per_button, reverse=True)[:2]
    growth = [many / few for many, few in zip(per_button[largest], per_button[middle])]
    figures.append(plain(f"a button of {largest:,} / of {middle:,}, sent", "≤ 1.10", growth, ""))
    return figures


def checks(programs, size):
    """check_buttons() beside a plain double loop, by Google Benchmark."""
    out = subprocess.run(
        [programs.build / "bench" / "layout_check", "--benchmark_format=json",
         f"--benchmark_repetitions={size.some}", f"--benchmark_min_time={size.check_s}",
         "--benchmark_enable_random_interleaving=true"],
        check=True, capture_output=True, text=True, timeout=300).stdout
    per_pair = {}
    for run in json.loads(out)["benchmarks"]:
        if run["run_type"] == "iteration":
            _, side, count = run["name"].split("/")[:3]
            per_pair.setdefault((side, int(count)), []).append(1e9 / run["items_per_second"])
    return [ratio(f"layout of {count:,} buttons checked", "≤ 0.76" if count >= 100 else "≤ 1.02",
                  per_pair["library", count], per_pair["plain", count], "ns a pair")
            for count in (10, 100, 1000, 10000)]
