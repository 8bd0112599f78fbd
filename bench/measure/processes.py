# SPDX-License-Identifier: Apache-2.0
"""Starts the programs of the benchmarks and reads their output: one JSON object per line."""
import contextlib
import json
import os
import pathlib
import subprocess
import threading


# Programs of this name are those of the name "library", with another build of the library.
SELF_CONTAINED = "self_contained"


class Failure(Exception):
    """A program failed, or its output could not be parsed."""


def output(*command):
    """The output of a program of the system."""
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE,
                          text=True, timeout=120).stdout


class Programs:
    """The programs of one build folder, run on one processor by default."""

    def __init__(self, build):
        self.build = pathlib.Path(build).resolve()
        self.library = self.build / "src" / "libmurlink-robot.so"
        self.self_contained = self.build.parent / "self-contained" / "src" / self.library.name
        # The last one: the first processors serve most interrupts.
        self.on_one_core = ("taskset", "--cpu-list", str(max(os.sched_getaffinity(0))))

    def path(self, name):
        """Where a program is."""
        return self.build / "bench" / name

    def run(self, name, *arguments, **how):
        """Runs a program to its end, and returns its last line of output."""
        with self.started(name, *arguments, **how) as process:
            return process.finish()

    @contextlib.contextmanager
    def started(self, name, *arguments, pinned=True, formats_log=False, under=(), limit_s=120):
        """A running program, started through the command `under` if that is given."""
        environment = {key: text for key, text in os.environ.items() if key != "BENCH_LOG"}
        if formats_log:
            environment["BENCH_LOG"] = "format"
        if name.startswith(SELF_CONTAINED):
            name = name.replace(SELF_CONTAINED, "library")
            environment["LD_LIBRARY_PATH"] = str(self.self_contained.parent)
        command = [*(self.on_one_core if pinned else ()), *under, self.path(name), *arguments]
        process = Process([str(word) for word in command], environment, limit_s)
        try:
            yield process
        finally:
            process.kill()


class Process:
    """A running program. Its input is open until finish(); it is killed after `limit_s`."""

    def __init__(self, command, environment, limit_s):
        self._command = " ".join(command)
        self._process = subprocess.Popen(command, env=environment, text=True,
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._limit = threading.Timer(limit_s, self._process.kill)
        self._limit.start()

    def next_line(self):
        """The next line of its output."""
        return self._parsed(self._process.stdout.readline())

    def finish(self):
        """Closes its input, waits for its end, and returns its last line of output."""
        out, _ = self._process.communicate()
        if self._process.returncode != 0:
            raise self._failure()
        return self._parsed((out.strip().splitlines() or [""])[-1])

    def kill(self):
        """Kills it."""
        self._limit.cancel()
        self._process.kill()
        self._process.wait()
        self._process.stdin.close()
        self._process.stdout.close()

    def _parsed(self, line):
        try:
            return json.loads(line)
        except json.JSONDecodeError:
            self._process.kill()
            raise self._failure(line) from None

    def _failure(self, line=""):
        code = self._process.wait()
        printed = f" and printed {line!r}" if line else ""
        late = " (its time was up)" if self._limit.finished.is_set() else ""
        return Failure(f"{self._command} ended with {code}{printed}{late}")
