# SPDX-License-Identifier: Apache-2.0
"""Starts the programs of the benchmarks and reads what they tell: one JSON object a line.

Every process is ended, sooner or later.
"""
import contextlib
import json
import os
import pathlib
import subprocess
import threading


class Failure(Exception):
    """A program ended badly, or told nothing."""


class Programs:
    """The programs of one build folder, run on one processor unless said otherwise."""

    def __init__(self, build):
        self.build = pathlib.Path(build).resolve()
        self.library = self.build / "src" / "libmurlink-robot.so.1"
        self._all_cores = os.sched_getaffinity(0)
        self._core = max(self._all_cores)  # the first ones serve most interrupts

    def tell(self, name, *arguments, **how):
        """Runs a program to its end, and returns what it told last."""
        with self.started(name, *arguments, **how) as process:
            return process.finish()

    @contextlib.contextmanager
    def started(self, name, *arguments, pinned=True, log=None, under=(), limit_s=120):
        """A running program: with its log lines formatted if `log` says so, `under` a command."""
        environment = {key: text for key, text in os.environ.items() if key != "BENCH_LOG"}
        if log:
            environment["BENCH_LOG"] = log
        command = [*under, str(self.build / "bench" / name), *map(str, arguments)]
        cores = {self._core} if pinned else self._all_cores
        process = Process(command, environment, cores, limit_s)
        try:
            yield process
        finally:
            process.kill()


class Process:
    """A running program, whose input is open until it is to finish; killed after `limit_s`."""

    def __init__(self, command, environment, cores, limit_s):
        self._command = " ".join(command)
        self._process = subprocess.Popen(
            command, env=environment, text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            preexec_fn=lambda: os.sched_setaffinity(0, cores))
        self._limit = threading.Timer(limit_s, self._process.kill)
        self._limit.start()

    def told(self):
        """The next line that it tells."""
        line = self._process.stdout.readline()
        if not line:
            raise Failure(f"{self._command} told nothing and ended with {self._process.wait()}")
        return json.loads(line)

    def finish(self):
        """Ends its input, waits for its end, and returns what it told last."""
        out, _ = self._process.communicate()
        if self._process.returncode != 0 or not out.strip():
            raise Failure(f"{self._command} ended with {self._process.returncode}")
        return json.loads(out.strip().splitlines()[-1])

    def kill(self):
        """Ends it, whatever it does."""
        self._limit.cancel()
        self._process.kill()
        self._process.wait()
        self._process.stdin.close()
        self._process.stdout.close()
