# SPDX-License-Identifier: Apache-2.0
"""What the library adds to a process: start, end, memory, threads, size, instructions."""
import collections
import re
import statistics
import subprocess
import tempfile
import time

from figures import Figure, difference, plain, ratio
from presses import SIDES, column, in_turn


def loading(programs, size):
    """dlopen() of the library, beside what it needs."""
    needed = subprocess.run(["ldd", programs.library], check=True, capture_output=True,
                            text=True).stdout
    grpc, protobuf = (re.search(rf"=> (\S*/{name}\.so\S*)", needed)[1]
                      for name in (r"libgrpc\+\+", "libprotobuf"))

    def beside(name, goal, *bare):
        paths = {"library": [programs.library], "bare": bare}
        runs = in_turn(size.starts, lambda side: programs.tell(
            "load_time", *paths[side])["load_ns"] / 1e6)
        return ratio(name, goal, runs["library"], runs["bare"], "ms")

    return [beside("dlopen of the library / of libgrpc++", "≤ 1.19", grpc),
            beside("the same / of libgrpc++ and libprotobuf", "", grpc, protobuf)]


def starting(programs, size):
    """The first initialise, what the process holds then, and finalise with an idle client."""
    def start(side):
        with programs.started(f"{side}_server") as server:
            told = server.told()
            server.finish()
        return {**told, "initialise_ms": told["initialise_ns"] / 1e6,
                "resident_mib": told["resident_kib"] / 1024}

    runs = in_turn(size.starts, start)
    return [
        ratio("first foot_touch_initialize", "≤ 1.10", *column(runs, "initialise_ms"), "ms"),
        difference("memory after it", "≤ 1", *column(runs, "resident_mib"), "MiB"),
        difference("threads after it", "≤ 1", *column(runs, "threads"), ""),
        plain("foot_touch_finalize, idle client connected", "≤ 2",
              [finalise_ms(programs, idle_s=1.2) for _ in range(size.some)], "ms"),
    ]


def finalise_ms(programs, idle_s):
    """On all processors, like an application; the client has been idle for so long."""
    with programs.started("library_server", pinned=False) as server:
        server.told()
        with programs.started("recogniser", "--presses", 10, "--idle", pinned=False) as client:
            client.told()
            time.sleep(idle_s)
            return server.finish()["finalise_ns"] / 1e6


def stripped_size(programs, _size):
    """As a device image holds the library."""
    with tempfile.NamedTemporaryFile() as stripped:
        subprocess.run(["strip", "-o", stripped.name, programs.library], check=True)
        kilobytes = len(stripped.read()) / 1000
    return [Figure("size of the library, stripped", "≤ 200", kilobytes, kilobytes, kilobytes, "kB")]


# Whose code it is: the first pattern found in "file:function [object]" says.
OWNERS = {
    "log calls": r"logLine|LineFormat|dlog_print",
    "library": r":(?:FootTouch_Server|RunningReports)::"
               r"|:std::_Function_handler<void \(int, int, void\*\)",
    "messages and gRPC's templates": r"\[.*/(?:libmurlink-robot\.so|\w+_server)",
    "gRPC, protobuf, Abseil": r"\[.*/lib(?:grpc|gpr|protobuf|absl|upb|address_sorting)",
    "C and C++ libraries": "",
}


def owner(place):
    """One of OWNERS."""
    return next(name for name, pattern in OWNERS.items() if re.search(pattern, place))


def profile(programs, side, presses):
    """The instructions that callgrind counts in a server which takes presses, by their owner."""
    with tempfile.NamedTemporaryFile() as counts:
        valgrind = ("valgrind", "--quiet", "--tool=callgrind",
                    f"--callgrind-out-file={counts.name}")
        with programs.started(f"{side}_server", under=valgrind) as server:
            server.told()
            programs.tell("recogniser", "--warm-up", 0, "--presses", presses)
            server.finish()
        text = subprocess.run(
            ["callgrind_annotate", "--threshold=100", "--show-percs=no", counts.name],
            check=True, capture_output=True, text=True).stdout
    shares = collections.Counter()
    for count, place in re.findall(r"^ *([\d,]+)  (\S+:.*)$", text, re.MULTILINE):
        shares[owner(place)] += int(count.replace(",", ""))
    return shares


def a_press(programs, side, few, many):
    """What a press costs: start and end are the same for few presses and for many."""
    less, more = (profile(programs, side, presses) for presses in (few, many))
    return {name: (more[name] - less[name]) / (many - few) for name in OWNERS}


def instructions(programs, size):
    """Of a press in the server; and where they go, for the picture."""
    runs = in_turn(size.few, lambda side: a_press(programs, side, *size.profiled))
    total = {side: [sum(run.values()) for run in runs[side]] for side in SIDES}
    own = [run["library"] for run in runs["library"]]
    figures = [
        ratio("instructions a press, log silent", "≤ 1.05", total["library"], total["bare"], ""),
        plain("instructions a press, own frames, log apart", "≤ 400", own, ""),
    ]
    figures[0].parts = {name: statistics.median(run[name] for run in runs["library"])
                        for name in OWNERS}
    return figures
