# SPDX-License-Identifier: Apache-2.0
"""Runs every benchmark of a build folder and reports: python3 bench/measure BUILD [--quick]."""
import platform
import subprocess
import sys
import time
from types import SimpleNamespace

import calls
import presses
import report
import weight
from processes import Failure, Programs, output
from progress import PROGRESS

QUESTIONS = (presses.latency, presses.throughput, calls.commands, calls.layouts, calls.checks,
             weight.loading, weight.starting, weight.ending, weight.stripped_size,
             weight.instructions, weight.self_contained)
CURVES = {"load": presses.under_load, "layout": calls.by_buttons, "finalise": weight.by_clients}
STEPS = len(QUESTIONS) + len(CURVES)

# How often things are done. Rounds have one of each side.
THOROUGH = SimpleNamespace(
    rounds=30, some=11, few=4, starts=25, presses=700, sleeps=40, check_s=0.05,
    layouts={10: 700, 1000: 200, 100000: 10}, profiled=(200, 1200),
    rates=(500, 1000, 2000, 4000, 6000, 7500), load_s=1, least_samples=600)
QUICK = SimpleNamespace(
    rounds=1, some=1, few=1, starts=1, presses=50, sleeps=3, check_s=0.001,
    layouts={10: 10, 1000: 5, 100000: 2}, profiled=(5, 25),
    rates=(500, 1000), load_s=0.1, least_samples=50)


def machine():
    """What the figures depend on."""
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = next((line.split(":")[1].strip() for line in file if "model name" in line), "unknown")
    grpc, protobuf = output("pkg-config", "--modversion", "grpc++", "protobuf").split()
    return {"processor": model, "kernel": platform.release(), "grpc": grpc, "protobuf": protobuf,
            "date": time.strftime("%Y-%m-%d")}


def main(build, quick):
    """Runs everything and reports."""
    size = QUICK if quick else THOROUGH
    programs = Programs(build)
    figures = []
    print(report.heading(), flush=True)
    with programs.started("bare_peers", limit_s=3600) as peers:
        peers.next_line()
        for number, question in enumerate(QUESTIONS, 1):
            PROGRESS.step(number, STEPS, question.__name__)
            found = question(programs, size)
            PROGRESS.clear()
            for figure in found:
                figures.append(figure)
                print(report.row(figure, judged=not quick), flush=True)
        curves = {}
        for number, (name, measure) in enumerate(CURVES.items(), len(QUESTIONS) + 1):
            PROGRESS.step(number, STEPS, measure.__name__)
            curves[name] = measure(programs, size)
            PROGRESS.clear()
    report.write(programs.build / ("quick" if quick else "results"), machine(), figures, curves)


if __name__ == "__main__":
    try:
        main(sys.argv[1], "--quick" in sys.argv[2:])
    except (Failure, subprocess.SubprocessError, OSError) as failure:
        sys.exit(f"bench: {failure}")
