# SPDX-License-Identifier: Apache-2.0
"""How far the benchmarks have got: on a terminal one line that is overwritten, elsewhere a line every
20 seconds. Written to standard error, so that the table stays whole."""
import sys
import time


class Progress:
    """Steps, each with rounds."""

    def __init__(self):
        self._begin = self._shown = time.monotonic()
        self._step = ""

    def step(self, number, count, name):
        """A step begins."""
        self._step = f"Step {number} of {count}, {name.replace('_', ' ')}"
        self._show("")

    def round(self, number, count):
        """A round of the step begins."""
        self._show(f", round {number} of {count}")

    def clear(self):
        """Makes room for other output."""
        if sys.stderr.isatty():
            print("\r\033[K", end="", file=sys.stderr, flush=True)

    def _show(self, detail):
        now = time.monotonic()
        line = f"{self._step}{detail}, {now - self._begin:.0f} s"
        if sys.stderr.isatty():
            print(f"\r{line:.79}\033[K", end="", file=sys.stderr, flush=True)
        elif now >= self._shown + 20:
            self._shown = now
            print(line, file=sys.stderr, flush=True)


PROGRESS = Progress()
