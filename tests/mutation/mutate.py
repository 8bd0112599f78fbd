# SPDX-License-Identifier: Apache-2.0
"""Usage: scripts/mutate [COUNT] [SEED]
Tests the tests: makes COUNT small changes to src/ (60 unless given; picked by SEED, 1 unless given),
one at a time, and says which of them no test notices. Works on a copy, build/mutants/SEED/tree.
Takes about half a minute a mutant. Interrupt it at any time: it then sums up what it has done."""

import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

from equivalents import noticeable
from mutants import mutants_of

SOURCE = Path(__file__).resolve().parent.parent.parent

# Which test files to ask first about a changed file: those of the unit.
ASK_FIRST = {
    "FootTouchAPI": ["CheckButtonsTest", "FootTouchInsideTest", "FootTouchApiTest"],
    "FootTouchGrpcClient": ["FootTouchGrpcClientTest", "RobotCommandsTest"],
    "FootTouchServerManager": ["FootTouchServerManagerTest", "FootTouchInsideTest"],
    "GestureRecognition": ["GestureRecognitionTest", "RobotCommandsTest"],
    "GrpcServer": ["ButtonEventTest", "DisplaySyncTest", "GrpcServerTest"],
    "Log": ["LogTest", "CheckButtonsTest"],
    "RobotCall": ["RobotCallTest", "RobotCommandsTest"],
    "RobotChannel": ["RobotChannelTest", "OneChannelTest"],
    "RunningReports": ["RunningReportsTest"],
    "ServerSetup": ["ServerSetupTest"],
    "UnaryCall": ["RobotCommandsTest", "DisplaySyncTest"],
}
FIRST_TARGETS = ["InsideTests", "LibraryTests", "OneChannelTests"]
SLOW = 0.7  # seconds; such tests are asked last


class Workshop:
    """The copy that is changed, built and tested."""

    def __init__(self, home):
        self.tree = home / "tree"
        self.build_folder = home / "build"
        self.log = home / "log"
        home.mkdir(parents=True, exist_ok=True)
        self.log.write_text("")
        self.output = ""
        self.durations = {}  # of each test, by number and name

    def copy_sources(self):
        listed = subprocess.run(
            ["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
            cwd=SOURCE, check=True, capture_output=True, text=True).stdout
        for name in filter(None, listed.split("\0")):
            original, copy = SOURCE / name, self.tree / name
            if not original.is_file():
                continue
            if copy.exists() and copy.read_bytes() == original.read_bytes():
                continue  # keeps its time, so that it is not built again
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(original, copy)

    def run(self, command, limit):
        """The output when the command succeeds, else None; a command that takes too long is ended
        with its children."""
        environment = {k: v for k, v in os.environ.items() if not k.endswith("_proxy")}
        process = subprocess.Popen(command, cwd=self.tree, stdout=subprocess.PIPE, text=True,
                                   errors="replace", stderr=subprocess.STDOUT, env=environment,
                                   start_new_session=True)
        try:
            output, _ = process.communicate(timeout=limit)
        except BaseException as reason:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            if not isinstance(reason, subprocess.TimeoutExpired):
                raise
            output, process.returncode = "took longer than %d s\n" % limit, -1
        with self.log.open("a") as log:
            log.write("$ %s\n%s\n" % (" ".join(map(str, command)), output))
        self.output = output
        return output if process.returncode == 0 else None

    def configure(self):
        ccache = shutil.which("ccache")
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=" + ccache] if ccache else []
        # An executable need not be linked again when a shared library changes.
        return self.run(["cmake", "-S", ".", "-B", self.build_folder, "-G", "Ninja",
                         "-DCMAKE_CXX_FLAGS=-O0", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                         *launcher], 300)

    def build(self, *targets, limit=600):
        wanted = ["--target", *targets] if targets else []
        return self.run(["cmake", "--build", self.build_folder, "--parallel", "2", *wanted], limit)

    def test(self, *choice, limit=1800):
        return self.run(["ctest", "--test-dir", self.build_folder, "--parallel", "2",
                         "--stop-on-failure", "--output-on-failure", *choice], limit)

    def killer(self):
        """The test that failed last."""
        failed = re.search(r"^\s*\d+ - (\S+) \(", self.output, re.MULTILINE)
        return failed.group(1) if failed else self.output.strip().splitlines()[-1]


def suites_of(file):
    """The suites of the tests to ask first about a file."""
    suites = set()
    for name in ASK_FIRST.get(Path(file).stem, []):
        text = (SOURCE / "tests" / (name + ".cpp")).read_text()
        suites.update(re.findall(r"^TEST(?:_F|_P)?\((\w+)", text, re.MULTILINE))
    return suites


def batches(workshop, file):
    """The tests in three parts, those most likely to notice a mutant first: their numbers, and how
    long they may take together before a mutant counts as noticed."""
    suites = suites_of(file)
    parts = [{}, {}, {}]
    for (number, name), duration in workshop.durations.items():
        is_near = not suites.isdisjoint(re.split(r"[/.]", name))
        parts[2 if duration >= SLOW else 0 if is_near else 1][number] = duration
    return [(",".join(part), 30 + 5 * sum(part.values())) for part in parts if part]


def judge(workshop, mutant):
    """What became of a mutant: a word, and who says so."""
    if workshop.build(*FIRST_TARGETS, limit=300) is None:
        return "not built", ""
    for i, (numbers, limit) in enumerate(batches(workshop, mutant.file)):
        if i == 1 and workshop.build(limit=300) is None:
            return "not built", ""
        if workshop.test("--tests-information", "0,0,0," + numbers, limit=limit) is None:
            return "killed", workshop.killer()
    return "survived", ""


def prepare(workshop):
    workshop.copy_sources()
    for step in (workshop.configure, lambda: workshop.build(limit=3600),
                 lambda: workshop.test("--label-exclude", "endurance")):
        if step() is None:
            sys.exit("mutate: the unchanged sources must build and pass; see %s" % workshop.log)
    passed = re.findall(r"Test +#(\d+): (\S+) \.* +Passed +([\d.]+) sec", workshop.output)
    workshop.durations = {(number, name): float(duration) for number, name, duration in passed}


def try_one(workshop, mutant):
    path = workshop.tree / mutant.file
    original = path.read_text()
    path.write_text(mutant.applied_to(original))
    try:
        return judge(workshop, mutant)
    finally:
        path.write_text(original)


def try_all(workshop, mutants):
    """What became of each mutant; those of an interrupted run up to there."""
    results = []
    try:
        for number, mutant in enumerate(mutants, 1):
            begin = time.monotonic()
            verdict, by = try_one(workshop, mutant)
            results.append((mutant, verdict))
            print("%3d %-9s %4.0f s  %s  %s" % (number, verdict, time.monotonic() - begin, mutant,
                                                by and "by " + by), flush=True)
    except KeyboardInterrupt:
        print("interrupted")
    return results


def summary(results):
    survivors = [mutant for mutant, verdict in results if verdict == "survived"]
    built = [mutant for mutant, verdict in results if verdict != "not built"]
    if survivors:
        print("\nSurvivors:")
    for mutant in survivors:
        print("\n%s\n%s" % (mutant, mutant.difference()))
    killed = len(built) - len(survivors)
    print("\n%d did not build" % (len(results) - len(built)))
    print("killed %d of %d (%.1f %%)" % (killed, len(built), 100 * killed / max(1, len(built))))
    return survivors


def main():
    numbers = sys.argv[1:]
    if len(numbers) > 2 or not all(number.isdigit() for number in numbers):
        sys.exit(__doc__)
    count, seed = [*map(int, numbers), *[60, 1][len(numbers):]]
    chance = random.Random(seed)
    every = noticeable(mutants_of(SOURCE, chance))
    workshop = Workshop(SOURCE / "build/mutants" / str(seed))
    prepare(workshop)
    print("%d of %d mutants, seed %d" % (min(count, len(every)), len(every), seed), flush=True)
    results = try_all(workshop, chance.sample(every, min(count, len(every))))
    sys.exit(1 if summary(results) else 0)


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    main()
