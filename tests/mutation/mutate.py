# SPDX-License-Identifier: Apache-2.0
"""Usage: scripts/mutate [COUNT] [SEED]
Tests the tests: makes COUNT small changes to src/, one at a time, and shows which of them no test
notices. COUNT is 60 and SEED, which picks the changes, is 1 unless given. A change that the compiler
rejects, or after which the optimised object code is the same, does not count. Works on two copies
in build/mutants, and takes about 15 seconds a change. Interrupt it at any time: it then sums up what
it has done."""

import random
import signal
import sys
import threading
import time
from pathlib import Path

from mutants import mutants_of
from workshop import Unusable, Workshop

SOURCE = Path(__file__).resolve().parent.parent.parent
WORKERS = 2
NOTICED, SURVIVED, EQUIVALENT, REJECTED = "noticed", "not noticed", "equivalent", "not compiled"


class Progress:
    """On a terminal one line that is overwritten, elsewhere a line for each change."""

    def __init__(self):
        self.begin = time.monotonic()

    def line(self, text):
        if sys.stdout.isatty():
            print("\r%.79s\033[K" % text, end="", flush=True)
        else:
            print(text, flush=True)

    def result(self, run, result):
        seconds = time.monotonic() - self.begin
        if sys.stdout.isatty():
            self.line("Changes: %d of %d tested, %d not noticed, %d s" %
                      (run.tested(), run.count, len(run.of(SURVIVED)), seconds))
        else:
            self.line("%5d s, %d of %d tested: %s: %s%s" %
                      (seconds, run.tested(), run.count, result.mutant, result.verdict,
                       result.by and " by " + result.by))

    def end(self):
        if sys.stdout.isatty():
            print("\r\033[K", end="", flush=True)


class Result:
    def __init__(self, mutant, verdict, by=""):
        self.mutant, self.verdict, self.by = mutant, verdict, by


class Run:
    """Hands out changes to the workers until `count` of them have been tested."""

    def __init__(self, mutants, count, progress):
        self.waiting, self.count, self.progress = iter(mutants), count, progress
        self.results, self.in_work, self.error = [], 0, None
        self.changed = threading.Condition()
        self.is_stopped = False

    def of(self, *verdicts):
        return [result for result in self.results if result.verdict in verdicts]

    def tested(self):
        return len(self.of(NOTICED, SURVIVED))

    def next(self):
        """The next change, or None when there is nothing left to do."""
        with self.changed:
            # A change in work that turns out not to count makes room for another one.
            self.changed.wait_for(lambda: self.is_stopped or not self.in_work or
                                  self.tested() + self.in_work < self.count)
            if self.is_stopped or self.tested() >= self.count:
                return None
            mutant = next(self.waiting, None)
            self.in_work += mutant is not None
            return mutant

    def add(self, result):
        with self.changed:
            self.in_work -= 1
            if not self.is_stopped:
                self.results.append(result)
                self.progress.result(self, result)
            self.changed.notify_all()

    def stop(self, error=None):
        with self.changed:
            self.is_stopped, self.error = True, self.error or error
            self.changed.notify_all()


def judge(workshop, mutant):
    objects = workshop.compile_optimised()
    if objects is None:
        return Result(mutant, REJECTED)
    if objects == workshop.original_objects:
        return Result(mutant, EQUIVALENT)
    by = workshop.first_failure(mutant.file)
    return Result(mutant, NOTICED if by else SURVIVED, by)


def work(workshop, run):
    try:
        while (mutant := run.next()) is not None:
            with workshop.changed(mutant):
                run.add(judge(workshop, mutant))
    except BaseException as error:  # raised again by main()
        run.stop(error)


def in_threads(function, argument_lists, stop):
    threads = [threading.Thread(target=function, args=arguments) for arguments in argument_lists]
    for thread in threads:
        thread.start()
    try:
        for thread in threads:
            thread.join()
    except KeyboardInterrupt:
        stop()
        for thread in threads:
            thread.join()
        return False
    return True


def prepare(workshops, run):
    """Both at once, as the tests run later: how long each of them takes then decides their order."""
    def prepare_one(workshop):
        try:
            workshop.prepare()
        except BaseException as error:
            run.stop(error)
    return in_threads(prepare_one, [[workshop] for workshop in workshops],
                      lambda: stop(workshops, run))


def stop(workshops, run):
    run.stop()
    for workshop in workshops:
        workshop.stop()


def summary(run):
    survivors = run.of(SURVIVED)
    for result in survivors:
        print("\nNot noticed: %s\n%s" % (result.mutant, result.mutant.difference()))
    print("\nDid not count: %d with the same object code, %d that did not compile" %
          (len(run.of(EQUIVALENT)), len(run.of(REJECTED))))
    noticed, tested = len(run.of(NOTICED)), run.tested()
    print("Noticed: %d of %d (%.1f %%)" % (noticed, tested, 100 * noticed / max(1, tested)))


def main():
    numbers = sys.argv[1:]
    if len(numbers) > 2 or not all(number.isdigit() for number in numbers):
        sys.exit(__doc__)
    count, seed = [*map(int, numbers), *[60, 1][len(numbers):]]
    chance = random.Random(seed)
    mutants = mutants_of(SOURCE, chance)
    chance.shuffle(mutants)
    progress = Progress()
    run = Run(mutants, min(count, len(mutants)), progress)
    workshops = [Workshop(SOURCE, SOURCE / "build/mutants" / str(i + 1)) for i in range(WORKERS)]
    progress.line("Building the unchanged sources and running their tests")
    if prepare(workshops, run) and not run.error:
        progress.line("Testing %d of %d changes, seed %d" % (run.count, len(mutants), seed))
        in_threads(work, [[workshop, run] for workshop in workshops], lambda: stop(workshops, run))
    progress.end()
    if isinstance(run.error, Unusable):
        sys.exit("mutate: %s" % run.error)
    if run.error:
        raise run.error
    summary(run)
    sys.exit(1 if run.of(SURVIVED) else 0)


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    main()
