"""Small faults of C++ sources: where they can be made, and how the source reads with one of them.

Understands tokens, not the language: relies on the layout that clang-format gives these sources (a binary operator has
spaces on both sides, a function begins in the first column), and leaves it to the compiler to refuse what makes no sense.
"""

import bisect
import difflib
import re
from dataclasses import dataclass, field

# Defined in no build that is tested for faults.
UNDEFINED = {"KA_WATCHED_MEMORY"}
# What stands in their parentheses is checked by the compiler or is advice to the processor.
NOT_BEHAVIOUR = {"static_assert", "assert", "Q_ASSERT", "sizeof", "alignas", "alignof", "__builtin_prefetch", "madvise"}

TOKEN = re.compile(
    r"""(?P<space>\s+)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<text>R"(?P<mark>[^()\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')
  | (?P<number>\.?\d(?:'?[\w.]|(?<=[eE])[+-])*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL,
)

BINARY = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "<<": [">>"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="],
}  # fmt: skip
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
WORDS = {
    "true": "false", "false": "true", "min": "max", "max": "min", "lower_bound": "upper_bound",
    "upper_bound": "lower_bound", "any_of": "all_of", "all_of": "any_of", "none_of": "any_of",
    "front": "back", "back": "front", "break": "continue", "continue": "break",
}  # fmt: skip
CALLED = {word for word in WORDS if word not in ("true", "false", "break", "continue")}
BEFORE_BODY = {")", "]", "const", "noexcept", "override", "mutable", "else", "do", "try", ":"}
OPENING = {"(": ")", "[": "]", "{": "}"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "|=", "&=", "^=", "<<=", ">>="}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int
    end: int


@dataclass(frozen=True)
class Fault:
    """The bytes [begin, end) of a source replaced by `text`."""

    file: str  # without its folder: files move
    path: str
    line: int  # from 1
    function: str  # around it, or ""
    kind: str
    before: str  # the lines it touches, white space collapsed
    after: str
    nth: int  # among those of the file that read the same
    begin: int = field(compare=False)
    end: int = field(compare=False)
    text: str = field(compare=False)

    def key(self):
        return "|".join((self.file, self.function, self.before, self.after, str(self.nth)))

    def applied(self, source):
        return source[: self.begin] + self.text + source[self.end :]

    def diff(self, source):
        old = source.splitlines(keepends=True)
        new = self.applied(source).splitlines(keepends=True)
        return "".join(difflib.unified_diff(old, new, "a/" + self.path, "b/" + self.path, n=2))


def collapsed(text):
    return " ".join(text.split())


def tokens_of(source):
    """The tokens that are compiled, without comments and directives."""
    found, at, hidden = [], 0, []
    while at < len(source):
        if source[at] == "#" and source[source.rfind("\n", 0, at) + 1 : at].strip() == "":
            end = re.compile(r"(?:\\\n|[^\n])*").match(source, at).end()
            directive = source[at + 1 : end].split()
            if directive[0] in ("if", "ifdef", "ifndef"):
                known = len(directive) > 1 and directive[1] in UNDEFINED
                hidden.append(known and directive[0] == "ifdef")
                if known and directive[0] == "ifndef":
                    hidden[-1] = None  # its other half is hidden
            elif directive[0] == "else" and hidden:
                hidden[-1] = {True: False, None: True, False: False}[hidden[-1]]
            elif directive[0] == "endif" and hidden:
                hidden.pop()
            at = end
            continue
        match = TOKEN.match(source, at)
        kind = match.lastgroup if match.lastgroup != "mark" else "text"
        if kind not in ("space", "comment") and True not in hidden:
            found.append(Token(kind, match.group(), match.start(), match.end()))
        at = match.end()
    return found


def partners_of(tokens):
    """Of each bracket the place of the one that closes or opens it."""
    partners, open_ = {}, []
    for i, token in enumerate(tokens):
        if token.text in OPENING:
            open_.append(i)
        elif open_ and token.text == OPENING[tokens[open_[-1]].text]:
            partners[i] = open_[-1]
            partners[open_.pop()] = i
    return partners


class Finder:
    def __init__(self, path, source):
        self.path, self.source = path, source
        self.tokens = tokens_of(source)
        self.partners = partners_of(self.tokens)
        self.in_function = self.inside_functions()
        self.line_starts = [0] + [m.end() for m in re.finditer("\n", source)]
        self.found, self.counts = [], {}

    def faults(self):
        unseen = self.not_behaviour()
        for i in range(len(self.tokens)):
            if i not in unseen:
                self.signs(i)
                self.constants(i)
                self.words(i)
                self.conditions(i)
                self.statements(i)
        return self.found

    # Around a token.

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def spaced(self, i):
        token = self.tokens[i]
        return self.source[token.begin - 1].isspace() and self.source[token.end].isspace()

    def not_behaviour(self):
        inside = set()
        for i, token in enumerate(self.tokens):
            if token.text in NOT_BEHAVIOUR and self.text(i + 1) == "(" and i + 1 in self.partners:
                inside.update(range(i, self.partners[i + 1] + 1))
        return inside

    def inside_functions(self):
        """Of each token whether the braces around it are those of a function or of a part of one."""
        around, inside = [False], []
        for i, token in enumerate(self.tokens):
            if token.text == "}" and len(around) > 1:
                around.pop()
            inside.append(around[-1])
            if token.text == "{":
                around.append(self.text(i - 1) in BEFORE_BODY or (around[-1] and self.text(i - 1) in (";", "{", "}")))
        return inside

    def line_of(self, at):
        return bisect.bisect_right(self.line_starts, at)

    def function_at(self, at):
        """The last name before parentheses on the nearest line above that begins in the first column."""
        for line in range(self.line_of(at) - 1, -1, -1):
            start = self.line_starts[line]
            head = self.source[start : self.source.find("\n", start)]
            match = re.match(r"(?:[A-Za-z_].*?[\s*&])?([\w:~]+|operator\W+)\(", head)
            if match:
                return match.group(1)
            if re.match(r"(class|struct|namespace|template)\b.*\{", head) or re.match("[A-Za-z_].*[{;]", head):
                names = re.findall(r"\w+", head.split("{")[0].split(" : ")[0].split("=")[0])
                return names[-1] if names else ""
        return ""

    def add(self, kind, begin, end, text):
        first, last = self.line_of(begin), self.line_of(end - 1)
        start = self.line_starts[first - 1]
        stop = self.line_starts[last] if last < len(self.line_starts) else len(self.source)
        before = collapsed(self.source[start:stop])
        after = collapsed(self.source[start:begin] + text + self.source[end:stop])
        file, function = self.path.rsplit("/", 1)[-1], self.function_at(begin)
        same = (file, function, before, after)
        self.counts[same] = self.counts.get(same, 0) + 1
        self.found.append(
            Fault(file, self.path, first, function, kind, before, after, self.counts[same], begin, end, text)
        )

    def replace(self, kind, i, text):
        self.add(kind, self.tokens[i].begin, self.tokens[i].end, text)

    # The kinds of faults.

    def signs(self, i):
        token = self.tokens[i]
        if token.kind != "sign" or self.text(i - 1) == "operator":
            return
        if token.text in BINARY and self.spaced(i) and self.text(i - 1) != "template":
            for other in BINARY[token.text]:
                self.replace("comparison" if token.text in COMPARISONS else "operator", i, other)
        if token.text in ("++", "--"):
            self.replace("operator", i, "--" if token.text == "++" else "++")
        starts = self.text(i - 1) in ("(", ",", "=", "return", "&&", "||", "?", ":", "[", "{", "<", ">", "+", "*", "/")
        if token.text in ("!", "-") and (starts or token.text == "!") and not self.source[token.end].isspace():
            self.replace("negation", i, "")
        if token.text == "?":
            self.swap_branches(i)

    def swap_branches(self, i):
        """Of `a ? b : c`, where that holds no other."""
        at, colon = i + 1, None
        while at < len(self.tokens):
            text = self.text(at)
            if text in OPENING and at in self.partners:
                at = self.partners[at]
            elif text == "?":
                return
            elif text == ":" and colon is None:
                colon = at
            elif text in (";", ",", ")", "]", "}", ":"):
                break
            at += 1
        if colon is None:
            return
        first = self.source[self.tokens[i + 1].begin : self.tokens[colon - 1].end]
        second = self.source[self.tokens[colon + 1].begin : self.tokens[at - 1].end]
        self.add("branches", self.tokens[i + 1].begin, self.tokens[at - 1].end, f"{second} : {first}")

    def constants(self, i):
        token = self.tokens[i]
        # The arguments of a template and the width of a bit field are no behaviour.
        if token.kind != "number" or self.text(i + 1) == ">" or self.text(i - 1) == ":":
            return
        whole = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlL]*)", token.text)
        if whole:
            number = int(whole[1].replace("'", ""), 0)
            for other in {number + 1, abs(number - 1)}:
                self.replace("constant", i, f"{other}{whole[2]}")
            return
        number = re.fullmatch(r"([\d.]+(?:[eE][-+]?\d+)?)([fFlL]?)", token.text)
        if number and float(number[1]) == 0:
            self.replace("constant", i, "1.0" + number[2])
        elif number:
            self.replace("constant", i, f"({token.text} * 1.5{number[2]})")

    def words(self, i):
        word = self.text(i)
        if self.tokens[i].kind == "name" and word in WORDS and (word not in CALLED or self.text(i + 1) == "("):
            self.replace("word", i, WORDS[word])

    def conditions(self, i):
        if self.text(i) in ("if", "while") and self.text(i + 1) == "(" and i + 1 in self.partners:
            begin, end = self.tokens[i + 1].end, self.tokens[self.partners[i + 1]].begin
            self.add("condition", begin, end, f"!({self.source[begin:end]})")

    def begins_statement(self, i):
        """Inside a function, not among the members of a class."""
        if self.text(i) in (";", "{", "}", ")"):
            return False
        if self.text(i - 1) == ":":
            return self.text(i - 2) == "default" or "case" in (self.text(i - 3), self.text(i - 5))
        return self.text(i - 1) in (";", "{", "}", ")", "else") and self.in_function[i]

    def statements(self, i):
        if not self.begins_statement(i):
            return
        if self.text(i) in ("return", "break", "continue") and self.text(i + 1) == ";":
            self.add("statement", self.tokens[i].begin, self.tokens[i].end, "")
            return
        end = self.end_of_expression(i)
        if end is not None:
            self.add("statement", self.tokens[i].begin, self.tokens[end].begin, "")

    def end_of_expression(self, i):
        """The semicolon after the statement that begins at `i`, when it is a call, a count or an assignment."""
        at, counted = i, False
        while self.text(at) in ("++", "--", "*", "delete", "::"):
            counted = counted or self.text(at) in ("++", "--", "delete")
            at += 1
        if self.text(at) == "(" and at in self.partners:
            at = self.partners[at] + 1
        elif self.tokens[at].kind == "name" and self.text(at) not in ("return", "if", "for", "while", "switch"):
            at += 1
        else:
            return None
        while at < len(self.tokens):
            text = self.text(at)
            if text in (".", "->", "::") and self.tokens[at + 1].kind == "name":
                at += 2
            elif text in ("(", "[") and at in self.partners:
                counted = counted or text == "("
                at = self.partners[at] + 1
            elif text in ("++", "--"):
                counted, at = True, at + 1
            else:
                break
        if self.text(at) in ASSIGNMENTS:
            counted = True
            while self.text(at) != ";" and at < len(self.tokens):
                at = self.partners.get(at, at) + 1 if self.text(at) in OPENING else at + 1
        return at if counted and self.text(at) == ";" else None


def faults_of(path, source):
    """Every fault that can be made in a source, in the order in which they stand."""
    return Finder(path, source).faults()


class Equivalents:
    """Faults that change nothing that a host or a test could see, with the reason for each.

    A paragraph names a file without its folder, the line as it is ("- "), as it reads with the fault ("+ ", where "*"
    means any fault of that line) and says why. "@ name" before the lines limits it to one function.
    """

    def __init__(self, text):
        self.entries = []
        for paragraph in re.split(r"\n\s*\n", text):
            lines = [line for line in paragraph.splitlines() if line.strip() and not line.startswith("#")]
            if not lines:
                continue
            entry = {"file": lines[0].strip(), "function": None, "before": None, "after": [], "why": [], "used": False}
            for line in lines[1:]:
                mark, rest = line[:2], collapsed(line[2:])
                if mark == "@ ":
                    entry["function"] = rest
                elif mark == "- ":
                    entry["before"] = rest
                elif mark == "+ " or line == "+":
                    entry["after"].append(rest)
                else:
                    entry["why"].append(line.strip())
            if not (entry["before"] and entry["after"] and entry["why"]):
                raise ValueError("not a fault with its reason:\n" + paragraph)
            self.entries.append(entry)

    def why(self, fault):
        for entry in self.entries:
            if (
                entry["file"] == fault.file
                and entry["before"] == fault.before
                and entry["function"] in (None, fault.function)
                and ("*" in entry["after"] or fault.after in entry["after"])
            ):
                entry["used"] = True
                return " ".join(entry["why"])
        return None
