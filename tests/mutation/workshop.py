# SPDX-License-Identifier: Apache-2.0
"""A copy of the sources that is changed, built and tested."""

import contextlib
import hashlib
import json
import os
import re
import shutil
import signal
import subprocess
from pathlib import Path

# Which test files in tests/library are most likely to notice a change to a file.
NEAREST = {
    "FootTouchAPI": ["CheckButtonsTest", "FootTouchInsideTest", "FootTouchApiTest"],
    "FootTouchGrpcClient": ["FootTouchGrpcClientTest", "RobotCommandsTest"],
    "FootTouchServerManager": ["FootTouchServerManagerTest", "FootTouchInsideTest"],
    "GestureRecognition": ["GestureRecognitionTest", "RobotCommandsTest"],
    "GrpcServer": ["ButtonEventTest", "DisplaySyncTest", "GrpcServerTest"],
    "LayoutCheck": ["CheckButtonsTest"],
    "Log": ["LogTest", "CheckButtonsTest"],
    "RobotCall": ["RobotCallTest", "RobotCommandsTest"],
    "RobotChannel": ["RobotChannelTest", "OneChannelTest"],
    "RunningCallbacks": ["RunningCallbacksTest", "GrpcServerTest"],
    "ServerSetup": ["ServerSetupTest"],
    "UnaryCall": ["UnaryCallTest", "DisplaySyncTest"],
    "Verdict": ["VerdictTest", "UnaryCallTest"],
}
# Of the test programs, only these use the library; endurance tests only as far as they are short.
PROGRAMS = ["InsideTests", "LibraryTests", "OneChannelTests", "ApplicationTests"]
ENDURANCE = ["AllocationEndurance", "DescriptorsEndurance", "PortEndurance", "CallbacksEndurance",
             "HostileClientsEndurance"]
SLOW = 0.7  # seconds; tests that take longer run last
TOO_SLOW = 5.5  # seconds; endurance tests that take longer are left out


class Unusable(Exception):
    """The unchanged sources do not build, or their tests fail."""


class Workshop:
    def __init__(self, source, home):
        self.source, self.tree = source, home / "tree"
        self.build_folder, self.optimised_folder = home / "build", home / "optimised"
        self.log = home / "log"
        self.output = ""
        self.process, self.is_stopped = None, False
        self.tests = []  # number, name, program and duration of each
        self.original_objects = None

    def prepare(self):
        self.tree.mkdir(parents=True, exist_ok=True)
        self.log.write_text("")
        self.copy_sources()
        for step in (self.configure, lambda: self.build(*PROGRAMS, *ENDURANCE, limit=3600),
                     self.find_tests):
            if not step() and not self.is_stopped:
                raise Unusable("the unchanged sources must build and pass; see %s" % self.log)
        self.original_objects = self.compile_optimised()

    def copy_sources(self):
        listed = subprocess.run(
            ["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
            cwd=self.source, check=True, capture_output=True, text=True).stdout
        for name in filter(None, listed.split("\0")):
            original, copy = self.source / name, self.tree / name
            if not original.is_file():
                continue
            if copy.exists() and copy.read_bytes() == original.read_bytes():
                continue  # keeps its time, so that it is not built again
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(original, copy)

    def run(self, command, limit):
        """Whether the command succeeds in time. One that takes too long is ended with its
        children."""
        if self.is_stopped:
            return False
        environment = {k: v for k, v in os.environ.items() if not k.endswith("_proxy")}
        output = self.log.with_name("output")
        with output.open("w") as file:
            self.process = subprocess.Popen(command, cwd=self.tree, stdout=file,
                                            stderr=subprocess.STDOUT, env=environment,
                                            start_new_session=True)
            try:
                status = self.process.wait(timeout=limit)
            except subprocess.TimeoutExpired:
                self.stop_process()
                status = self.process.wait()
                file.write("took longer than %d s\n" % limit)
        self.output = output.read_text(errors="replace")
        with self.log.open("a") as log:
            log.write("$ %s\n%s\n" % (" ".join(map(str, command)), self.output))
        return status == 0

    def stop_process(self):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGKILL)

    def stop(self):
        """From another thread: ends what is running, and starts nothing more."""
        self.is_stopped = True
        if self.process and self.process.poll() is None:
            self.stop_process()

    def configure(self):
        ccache = shutil.which("ccache")
        common = ["cmake", "-S", ".", "-G", "Ninja",
                  *(["-DCMAKE_CXX_COMPILER_LAUNCHER=" + ccache] if ccache else [])]
        # An executable need not be linked again when a shared library changes.
        tested = ["-B", self.build_folder, "-DCMAKE_CXX_FLAGS=-O0",
                  "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"]
        # Moving a log line to another source line makes no difference that matters.
        optimised = ["-B", self.optimised_folder, "-DMURLINK_BUILD_TESTS=OFF",
                     "-DMURLINK_BUILD_SIMULATOR=OFF", "-DMURLINK_BUILD_EXAMPLES=OFF",
                     "-DCMAKE_CXX_FLAGS=-O2 -D__LINE__=1"]
        return self.run([*common, *tested], 300) and self.run([*common, *optimised], 300)

    def build(self, *targets, limit=300):
        return self.run(["cmake", "--build", self.build_folder, "--parallel", "2",
                         "--target", *targets], limit)

    def compile_optimised(self):
        """A digest of the library's optimised object code, or None when it does not compile."""
        if not self.run(["cmake", "--build", self.optimised_folder, "--parallel", "2",
                         "--target", "murlink_objects"], 300):
            return None
        digest = hashlib.sha256()
        for path in sorted((self.optimised_folder / "src").rglob("*.o")):
            digest.update(path.read_bytes())
        return digest.digest()

    def test(self, numbers, limit):
        return self.run(["ctest", "--test-dir", self.build_folder, "--parallel", "2",
                         "--stop-on-failure", "--output-on-failure", "--tests-information",
                         "0,0,0," + ",".join(map(str, numbers))], limit)

    def find_tests(self):
        """Runs every test that may be run later, and keeps how long it takes."""
        if not self.run(["ctest", "--test-dir", self.build_folder, "--show-only=json-v1"], 60):
            return False
        programs = {}
        for number, test in enumerate(json.loads(self.output)["tests"], 1):
            program = Path(test.get("command", [""])[0]).name
            if program in PROGRAMS + ENDURANCE:
                programs[number] = program
        if not self.test(programs, 1800):
            return False
        passed = re.findall(r"Test +#(\d+): (\S+) \.* +Passed +([\d.]+) sec", self.output)
        self.tests = [(int(number), name, programs[int(number)], float(duration))
                      for number, name, duration in passed]
        return True

    @contextlib.contextmanager
    def changed(self, mutant):
        path = self.tree / mutant.file
        original = path.read_text()
        path.write_text(mutant.applied_to(original))
        try:
            yield
        finally:
            path.write_text(original)

    def rounds(self, file):
        """The numbers of the tests in three rounds, those that are most likely to notice a change
        first, and how long each round may take."""
        nearest = suites_of(self.source, file)
        rounds = [{}, {}, {}]
        for number, name, program, duration in self.tests:
            if program in ENDURANCE or duration >= SLOW:
                if program in PROGRAMS or duration < TOO_SLOW:
                    rounds[2][number] = duration
            else:
                is_near = not nearest.isdisjoint(re.split(r"[/.]", name))
                rounds[0 if is_near else 1][number] = duration
        return [(list(part), 30 + 2 * sum(part.values())) for part in rounds]

    def first_failure(self, file):
        """The test that notices the change to a file, or "". The library compiles."""
        if not self.build(*PROGRAMS):
            return "the build of the tests"
        for i, (numbers, limit) in enumerate(self.rounds(file)):
            if i == 2 and not self.build(*ENDURANCE):
                return "the build of the tests"
            if numbers and not self.test(numbers, limit):
                failed = re.search(r"^\s*\d+ - (\S+) \(", self.output, re.MULTILINE)
                return failed[1] if failed else "a test that does not end"
        return ""


def suites_of(source, file):
    """The suites of the tests that are most likely to notice a change to a file."""
    suites = set()
    for name in NEAREST.get(Path(file).stem, []):
        text = (source / "tests/library" / (name + ".cpp")).read_text()
        suites.update(re.findall(r"^TEST(?:_F|_P)?\((\w+)", text, re.MULTILINE))
    return suites
