# SPDX-License-Identifier: Apache-2.0
"""Mutants that no test can notice, each with its reason: equivalents.txt."""

import re
from pathlib import Path

LIST = Path(__file__).with_name("equivalents.txt")


def words(text):
    return " ".join(text.split())


def entries():
    """The file, the lines before and after, and the reason of each entry. Entries have a blank line
    between them."""
    text = "".join(line for line in LIST.read_text().splitlines(True) if not line.startswith("#"))
    for entry in filter(None, map(str.strip, text.split("\n\n"))):
        file, change = entry.split("\n", 1)
        before, rest = change.split("\nbecomes\n", 1)
        after, reason = rest.split("\nbecause ", 1)
        yield file, words(before), words(after), words(reason)


def fits(entry, mutant):
    file, old, new, _ = entry
    before, after = map(words, mutant.lines())
    return file == mutant.file and old == before and \
        re.fullmatch(re.escape(new).replace(r"\.\.\.", ".*"), after)


def noticeable(mutants):
    """The mutants that are not on the list. Throws when the list has grown old."""
    listed = list(entries())
    for entry in listed:
        if not any(fits(entry, mutant) for mutant in mutants):
            raise ValueError("%s: no mutant is %s -> %s" % (LIST, entry[1], entry[2]))
    return [mutant for mutant in mutants if not any(fits(entry, mutant) for entry in listed)]
