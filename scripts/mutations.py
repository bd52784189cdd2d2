"""Makes mutants of C++ source: copies in which one small thing is wrong.

tools/run-mutations uses it. It knows the form that clang-format gives to the sources, and no
grammar. A mutant that does not compile is drawn in vain.
"""

import re
from collections import Counter
from typing import NamedTuple


class Mutant(NamedTuple):
    path: str
    line: int  # of the first changed line, from 1
    kind: str
    old: str  # the changed lines, without their indentation
    new: str
    nth: int = 1  # of the equal ones in the file

    def __str__(self):
        nth = f" ({self.nth})" if self.nth > 1 else ""
        return f"{self.path}{nth}: {self.old} => {self.new}"

    def apply(self, text):
        """Returns the mutated text of the file."""
        lines = text.split("\n")
        count = self.old.count(JOINT) + 1
        first = lines[self.line - 1]
        indent = first[:len(first) - len(first.lstrip())]
        lines[self.line - 1:self.line - 1 + count] = [
            indent + line for line in self.new.split(JOINT)]
        return "\n".join(lines)


JOINT = " <> "  # joins the two lines of swapped statements

TOKENS = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*"|'
    r"(?<![0-9A-Fa-f])'(?:\\.[^'\n]*|[^'\\\n])'", re.DOTALL)


def without_texts(text):
    """Returns the code with blanks for comments and '_' for the inside of texts. Every
    character stays at its place."""
    def blank(match):
        token = match.group()
        if token[0] == "/":
            return re.sub(r"[^\n]", " ", token)
        return token[0] + re.sub(r"[^\n]", "_", token[1:-1]) + token[-1]
    return TOKENS.sub(blank, text)


# What takes the place of an operator. clang-format puts blanks around binary operators and
# none around template brackets, pointers and references.
OPERATORS = {
    "relation": (r"(?<= )(?:==|!=|<=|>=|<|>)(?= )",
                 {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"],
                  ">": [">=", "<="], ">=": [">", "<"]}),
    "arithmetic": (r"(?<= )(?:[-+*/%&|^]|<<|>>|[-+|&]=)(?= )|\+\+|--",
                   {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "&": ["|"],
                    "|": ["&"], "^": ["|"], "<<": [">>"], ">>": ["<<"], "+=": ["-=", "="],
                    "-=": ["+=", "="], "|=": ["&=", "="], "&=": ["|=", "="], "++": ["--"],
                    "--": ["++"]}),
    "condition": (r"(?<= )(?:&&|\|\|)(?= )|!(?=[\w(*])|\b(?:true|false)\b",
                  {"&&": ["||"], "||": ["&&"], "!": [""], "true": ["false"],
                   "false": ["true"]}),
}
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f']+|\d[\d']*)([uUlL]*)\b(?!\.)")
CONDITION = re.compile(r"\b(if|while) \((.*)\)(?= \{$| return.*;$| break;$| continue;$|$)")
GUARD = re.compile(r"const (?:\w+::)*CriticalSectionLock \w+\(.*\);")
CALL = re.compile(r"(?:static_cast<void>\()?[\w:.>*()\[\]-]+\(.*\);")
ASSIGNMENT = re.compile(r"[\w:.>*()\[\]-]+ [-+|&^]?= .*;|(?:\+\+|--)[\w.>-]+;|[\w.>-]+(?:\+\+|--);")
NO_CODE = re.compile(r"#|static_assert|using |namespace|template|friend |return;|class |struct |case ")


def changed_number(digits):
    digits = digits.replace("'", "")
    base, form = ((16, "0x{:X}") if digits.startswith("0x") else
                  (8, "0{:o}") if digits.startswith("0") and digits != "0" else (10, "{}"))
    value = int(digits, base)
    return [form.format(other) for other in (value + 1, value - 1) if other >= 0]


def is_statement(code):
    """True for a call or an assignment that fills a whole line."""
    balanced = code.count("(") == code.count(")")
    return balanced and not NO_CODE.match(code) and bool(
        CALL.fullmatch(code) or ASSIGNMENT.fullmatch(code))


def changes(line, code):
    """Yields (kind, new line) for all that can be changed within one line. `code` is the same
    line without comments and texts."""
    for kind, (pattern, others) in OPERATORS.items():
        for match in re.finditer(pattern, code):
            for other in others[match.group()]:
                yield kind, line[:match.start()] + other + line[match.end():]
    for match in NUMBER.finditer(code):
        for other in changed_number(match.group(1)):
            yield "constant", line[:match.start(1)] + other + line[match.end(1):]
    for match in CONDITION.finditer(code):
        condition = line[match.start(2):match.end(2)]
        if condition.count("(") == condition.count(")"):
            others = [f"!({condition})", f"({condition}) && false"]
            if match.group(1) == "if":  # a loop would have no end
                others.append(f"({condition}) || true")
            for other in others:
                yield "condition", line[:match.start(2)] + other + line[match.end(2):]
    for match in re.finditer(r'"_+"|\'_\'', code):
        inside = range(match.start() + 1, match.end() - 1)
        letters = [at for at in inside if line[at].isalpha() and line[at - 1] not in "\\%"]
        for at in letters[len(letters) // 2:][:1]:
            other = "x" if line[at] != "x" else "y"
            yield "text", line[:at] + other + line[at + 1:]


def mutants_of(path, text):
    """Returns all mutants of a source, in the order of its lines."""
    mutants = []
    lines = text.split("\n")
    codes = without_texts(text).split("\n")
    begins = True  # a statement may begin in this line
    for index, code in enumerate(codes):
        line = lines[index].strip()
        offset = len(lines[index]) - len(lines[index].lstrip())
        code = code[offset:].rstrip()
        if not code:
            continue
        at_begin, begins = begins, code[-1] in ";{}:"
        if NO_CODE.match(code):
            continue
        mutants += [Mutant(path, index + 1, kind, line, new.strip())
                    for kind, new in changes(line, code)]
        if GUARD.fullmatch(code):
            mutants.append(Mutant(path, index + 1, "lock", line, ""))
        elif at_begin and is_statement(code):
            mutants.append(Mutant(path, index + 1, "statement", line, ";"))
            following = codes[index + 1] if index + 1 < len(codes) else ""
            if following[:offset].isspace() and is_statement(following[offset:].rstrip()):
                after = lines[index + 1].strip()
                mutants.append(Mutant(path, index + 1, "swap", line + JOINT + after,
                                      after + JOINT + line))
    counts = Counter()
    for index, mutant in enumerate(mutants):
        counts[str(mutant)] += 1
        mutants[index] = mutant._replace(nth=counts[str(mutant)])
    return mutants


def read_equivalent(path):
    """Returns the mutants, as texts, that a file lists as equivalent. A line of the file is
    "== reason", or a mutant below its reason."""
    listed = set()
    reason = None
    with open(path, encoding="utf-8") as file:
        for line in map(str.strip, file):
            if line.startswith("=="):
                reason = line[2:].strip()
            elif line and not line.startswith("#"):
                if not reason:
                    raise SystemExit(f"{path}: '{line}' has no reason above it")
                listed.add(line)
    return listed
