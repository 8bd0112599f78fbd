# SPDX-License-Identifier: Apache-2.0
"""Small changes to C++ sources, found in their tokens. Relies on the format that clang-format gives
them: only binary operators have blanks around them."""

import difflib
import re

OPERATORS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+",
}
WORDS = {
    "LOG_INFO": "LOG_ERROR", "LOG_ERROR": "LOG_INFO", "true": "false", "false": "true",
}
TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*)
  | (?P<string>"(?:\\.|[^"\\\n])*")
  | (?P<character>'(?:\\.|[^'\\\n])*')
  | (?P<word>[A-Za-z_]\w*(?:::[A-Za-z_]\w*)*)
  | (?P<number>\d[\w.]*)
  | (?P<operator>->|::|\+\+|--|[-+*/]=|==|!=|<=|>=|&&|\|\||[^\s\w])
""", re.VERBOSE | re.MULTILINE | re.DOTALL)


# Functions of which a change cannot be observed, although it changes the object code.
UNOBSERVABLE = {
    "areClearlyApart": "a shortcut: pairs that it does not skip are checked in full",
}


class Mutant:
    """The text from `begin` to `end` of a file becomes another."""

    def __init__(self, file, source, kind, begin, end, text):
        self.file, self.source, self.kind = file, source, kind
        self.begin, self.end, self.text = begin, end, text
        self.line = source.count("\n", 0, begin) + 1

    def applied_to(self, source):
        assert source == self.source
        return source[:self.begin] + self.text + source[self.end:]

    def difference(self):
        lines = difflib.unified_diff(self.source.splitlines(),
                                     self.applied_to(self.source).splitlines(), lineterm="", n=1)
        return "\n".join(list(lines)[2:])

    def __str__(self):
        def short(text):
            text = " ".join(text.split())
            return text if len(text) < 60 else text[:57] + "..."

        return "%s:%d %s: %s -> %s" % (self.file, self.line, self.kind,
                                       short(self.source[self.begin:self.end]),
                                       short(self.text) or "nothing")


def without_comments(source):
    """The tokens that are code, but for what the coverage leaves out too, because nothing reaches it,
    and what the compiler alone looks at."""
    excluded = False
    static = {source.count("\n", 0, m.start())
              for m in re.finditer(r"\bstatic_assert\b|\bvirtual\b|gnu::", source)}
    for token in TOKEN.finditer(source):
        if token.lastgroup == "comment":
            excluded = (excluded or "GCOVR_EXCL_START" in token[0]) and \
                "GCOVR_EXCL_STOP" not in token[0]
        elif token.lastgroup != "directive" and not excluded and \
                source.count("\n", 0, token.start()) not in static:
            yield token


def other_number(text, chance):
    digits = re.match(r"\d+", text)[0]
    value = int(digits, 0) + (chance.choice([1, -1]) if int(digits) else 1)
    return str(value) + text[len(digits):]


def other_text(text, chance):
    """With one letter changed that is neither escaped nor part of a printf conversion."""
    fixed = {i for m in re.finditer(r"%[-.\d]*[a-z]|\\.", text) for i in range(m.start(), m.end())}
    letters = [i for i, c in enumerate(text) if c.isalpha() and i not in fixed]
    if not letters:
        return None
    at = chance.choice(letters)
    return text[:at] + ("q" if text[at] != "q" else "p") + text[at + 1:]


def change_of(token, source, chance):
    """A kind of change and the new text, or None."""
    text = token[0]
    before, after = source[token.start() - 1], source[token.end():token.end() + 1]
    if token.lastgroup == "operator":
        if text in OPERATORS and before.isspace() and after.isspace():
            return "operator", OPERATORS[text]
        if text == "!":
            return "operator", ""
    if token.lastgroup == "word":
        if text in WORDS:
            return "level" if "LOG" in text else "constant", WORDS[text]
        if text in ("Level::Info", "Level::Error"):
            return "level", "Level::Info" if text == "Level::Error" else "Level::Error"
    if token.lastgroup == "number":
        return "constant", other_number(text, chance)
    if token.lastgroup == "string":
        changed = other_text(text, chance)
        return changed and ("text", changed)
    return None


def token_mutants(file, source, chance):
    for token in without_comments(source):
        change = change_of(token, source, chance)
        if change:
            yield Mutant(file, source, change[0], token.start(), token.end(), change[1])


class Statement:
    def __init__(self, source, first, last, block, follows):
        self.begin, self.end, self.block = first.start(), last.end(), block
        self.text = source[self.begin:self.end]
        self.follows = follows  # the statement before it ends where this one begins
        self.is_last = False


def statements_of(source):
    """The simple statements in the bodies of functions: those that end with a semicolon and hold no
    braces."""
    found, blocks, pending, previous, parentheses = [], [], [], None, 0
    block_number, follows = 0, False
    for token in without_comments(source):
        text = token[0]
        if text == "{":
            is_code = previous in (")", "else", "const", "override", "try") and parentheses == 0
            block_number += 1
            blocks.append(block_number if is_code else None)
            pending, follows = [], False
        elif text == "}":
            if found and found[-1].block == (blocks[-1] if blocks else None):
                found[-1].is_last = True
            if blocks:
                blocks.pop()
            pending, follows = [], False
        elif text == ";" and parentheses == 0:
            if pending and pending[0].lastgroup == "word" and blocks and blocks[-1]:
                found.append(Statement(source, pending[0], token, blocks[-1], follows))
                follows = True
            pending = []
        elif text == ":" and pending and pending[0][0] in ("case", "default"):
            pending, follows = [], False
        else:
            parentheses += {"(": 1, ")": -1}.get(text, 0)
            pending.append(token)
        previous = text
    return found


def needs(other, one):
    """Whether a statement uses what the one before it declares: in the other order it would not
    compile."""
    declared = re.match(r"[\w:<>, *&]*?[\s*&](\w+)( =|;|\()", one.text)
    return declared and re.search(r"\b%s\b" % declared[1], other.text) and \
        DECLARATION.match(one.text)


DECLARATION = re.compile(r"(?!delete|return|throw)"
                         r"(static |const |auto\b|using |constexpr |extern |namespace |struct |"
                         r"[\w:<>]+[*&]? (\*const )?\w+( =|;|\(|\{|\[))")


def is_log(statement):
    return statement.text.startswith("LOG_")


def is_assignment(statement):
    return re.fullmatch(r"\w+( = \w+|\.clear\(\));", statement.text)


def is_filling(statement):
    return re.match(r"builder\.(Add|Set)\w+\(|\w+->set_\w+\(", statement.text)


def is_observable(one, other):
    """Whether it can matter which of two statements is first. Nothing that logs a line reads what
    the library assigns next to it; messages and builders can be filled in any order; and only two
    threads that race would notice what is outside of a lock."""
    return not (is_log(one) and is_assignment(other) or is_log(other) and is_assignment(one) or
                is_filling(one) and is_filling(other) or
                any("std::lock_guard" in statement.text for statement in (one, other)))


def removed(file, source, statements):
    for one in statements:
        # A function that should return a value and does not could do anything.
        is_result = one.text.startswith("return ") and one.is_last
        if not is_result and not (DECLARATION.match(one.text) and "return" not in one.text):
            yield Mutant(file, source, "removed statement", one.begin, one.end, ";")


def swapped(file, source, statements):
    for one, other in zip(statements, statements[1:]):
        movable = not any(re.match(r"(return|break|continue)\b", s.text) for s in (one, other))
        if movable and other.follows and one.block == other.block and one.text != other.text and \
                not needs(other, one) and is_observable(one, other):
            between = source[one.end:other.begin]
            yield Mutant(file, source, "swapped statements", one.begin, other.end,
                         other.text + between + one.text)


def function_of(mutant):
    """The function in whose definition the change lies: its first line begins in column 0."""
    heads = re.findall(r"^\w[^\n]*?(\w+)\(", mutant.source[:mutant.begin], re.MULTILINE)
    return heads[-1] if heads else None


def mutants_of(root, chance):
    """Every mutant of the library."""
    mutants = []
    for path in sorted((root / "src").glob("*.cpp")) + sorted((root / "src").glob("*.h")):
        file, source = str(path.relative_to(root)), path.read_text()
        mutants += token_mutants(file, source, chance)
        statements = statements_of(source)
        mutants += removed(file, source, statements)
        mutants += swapped(file, source, statements)
    return [mutant for mutant in mutants if function_of(mutant) not in UNOBSERVABLE]
