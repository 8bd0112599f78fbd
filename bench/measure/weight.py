# SPDX-License-Identifier: Apache-2.0
"""What the library adds to a process: start, end, memory, threads, size, instructions."""
import collections
import re
import statistics
import tempfile
import time

from figures import difference, plain, ratio
from presses import SIDES, column, in_turn, press
from processes import SELF_CONTAINED, Failure, output


def load_ms(programs, *libraries):
    """dlopen() of libraries in a new process."""
    return programs.run("load_time", *libraries)["load_ns"] / 1e6


def loading(programs, size):
    """dlopen() of the library, beside what it needs."""
    needed = output("ldd", programs.library)
    grpc, protobuf = (re.search(rf"=> (\S*/{name}\.so\S*)", needed)[1]
                      for name in (r"libgrpc\+\+", "libprotobuf"))
    paths = {"library": [programs.library], "grpc": [grpc], "both": [grpc, protobuf]}
    runs = in_turn(size.starts, lambda name: load_ms(programs, *paths[name]), tuple(paths))
    return [ratio("dlopen beside libgrpc++", "", runs["library"], runs["grpc"], "ms"),
            ratio("dlopen beside libgrpc++ and libprotobuf", "≤ 1.05", runs["library"], runs["both"],
                  "ms")]


def start(programs, side):
    """The first initialise until it returns, and what the process holds once it listens."""
    with programs.started(f"{side}_server") as server:
        printed = server.next_line()
        server.finish()
    return {**printed, "initialise_ms": printed["initialise_ns"] / 1e6,
            "resident_mib": printed["resident_kib"] / 1024}


def starting(programs, size):
    """What start() measures."""
    runs = in_turn(size.starts, lambda side: start(programs, side))
    return [
        ratio("first foot_touch_initialize", "≤ 1.10", *column(runs, "initialise_ms"), "ms"),
        difference("memory after it, more than bare", "≤ 1", *column(runs, "resident_mib"), "MiB"),
        difference("threads after it, more than bare", "≤ 1", *column(runs, "threads"), ""),
    ]


def finalise_ms(programs, side, idle_s, *options):
    """On all processors, like an application; the clients have been idle for so long."""
    with programs.started(f"{side}_server", pinned=False) as server:
        server.next_line()
        with programs.started("recogniser", "--presses", 10, "--idle", *options,
                              pinned=False) as client:
            client.next_line()
            time.sleep(idle_s)
            return server.finish()["finalise_ns"] / 1e6


def quit_ms(programs, side, clients=1):
    """From the end of the last press's callback, which ends the application, until finalise returns.
    The clients stay connected and do not read from their connections."""
    presses = 10
    with programs.started(f"{side}_server", 0, presses * clients, pinned=False) as server:
        server.next_line()
        with programs.started("recogniser", "--warm-up", 0, "--presses", presses, "--clients",
                              clients, "--idle", pinned=False) as client:
            client.next_line()
            return server.finish()["finalise_ns"] / 1e6


def by_clients(programs, size):
    """foot_touch_finalize() after the last press of so many clients: median, least and most."""
    rows = []
    for clients in (1, 10, 100):
        runs = in_turn(size.few, lambda side, c=clients: quit_ms(programs, side, c))
        row = {"clients": clients}
        for side in SIDES:
            row |= {side: statistics.median(runs[side]), f"{side}_low": min(runs[side]),
                    f"{side}_high": max(runs[side])}
        rows.append(row)
    return rows


def ending(programs, size):
    """foot_touch_finalize() with a client that disconnects when asked, and with one that
    looks at its connection every few seconds, as gRPC's do that only press."""
    watching = in_turn(size.some, lambda side: finalise_ms(programs, side, 1.2, "--watch"))
    idle = in_turn(size.few, lambda side: finalise_ms(programs, side, 1.2))
    quitting = in_turn(size.some, lambda side: quit_ms(programs, side))
    bare = [statistics.median(runs["bare"]) for runs in (watching, idle, quitting)]
    return [
        plain("foot_touch_finalize, client idle, watching", "≤ 2", watching["library"], "ms", bare[0]),
        plain("the same, client not watching", "", idle["library"], "ms", bare[1]),
        plain("the same, since the last press's callback", "≤ 20", quitting["library"], "ms", bare[2]),
    ]


def stripped_kb(library):
    """The size of a library as a device image holds it."""
    with tempfile.NamedTemporaryFile() as stripped:
        output("strip", "-o", stripped.name, library)
        return len(stripped.read()) / 1000


def stripped_size(programs, _size):
    """Of the library."""
    return [plain("size of the library, stripped", "≤ 200", [stripped_kb(programs.library)], "kB")]


def self_contained(programs, size):
    """Of the library with gRPC and protobuf inside, where it was built; beside the one without, and
    for a press beside bare gRPC."""
    inside, outside = programs.self_contained, programs.library
    if not inside.exists():
        return []
    presses = in_turn(
        size.rounds, lambda side: press(programs, side, "--presses", size.presses)["p50"],
        (SELF_CONTAINED, "bare"))
    loads = in_turn(size.starts, lambda library: load_ms(programs, library), (inside, outside))
    starts = in_turn(size.starts, lambda side: start(programs, side)["resident_mib"],
                     (SELF_CONTAINED, "library"))
    return [
        ratio("self-contained, press, round trip p50", "≤ 0.85", *presses.values(), "µs"),
        ratio("self-contained, dlopen beside the shared one", "≤ 0.2", *loads.values(), "ms"),
        ratio("self-contained, memory beside the shared one", "≤ 0.6", *starts.values(), "MiB"),
        plain("self-contained, size, stripped", "≤ 6,000", [stripped_kb(inside)], "kB"),
    ]


# Whose code it is: the owner of the first pattern that matches "file:function [object]".
OWNERS = {
    "log calls": r"logLine|LineFormat|dlog_print",
    "library": r":(?:FootTouch_Server|murlink::\w+)::"
               r"|:std::_Function_handler<void \(int, int, void\*\)|:std::_Sp_counted",
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
            server.next_line()
            programs.run("recogniser", "--warm-up", 0, "--presses", presses)
            server.finish()
        text = output("callgrind_annotate", "--threshold=100", "--show-percs=no", counts.name)
    shares = collections.Counter()
    for count, place in re.findall(r"^ *([\d,]+)  (\S+:.*)$", text, re.MULTILINE):
        shares[owner(place)] += int(count.replace(",", ""))
    if not shares["library"] and side == "library":
        raise Failure("callgrind_annotate printed nothing that could be read")
    return shares


def a_press(programs, side, few, many):
    """What a press costs: start and end are the same for few presses and for many."""
    less, more = (profile(programs, side, presses) for presses in (few, many))
    return {name: (more[name] - less[name]) / (many - few) for name in OWNERS}


def instructions(programs, size):
    """Of a press in the server, in all and by owner."""
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
