"""The small changes that can be made to a C++ source: scripts/mutate tries them.

A source is read in tokens, brackets and function bodies; no more of the language is known. What
does not compile is for the compiler to refuse.
"""

import collections
import hashlib
import itertools
import re

TOKEN = re.compile(
    r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<text>(?:u8|[uUL])?R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"\w*
            |(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*"\w*)
  | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:(?<=[eEpP])[+-]|'?[\w.])*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|&&|\|\||[<>=!+\-*/%&|^]=|[^\s\w])
""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
OPERATORS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",),
    "%": ("*",), "<<": (">>",), ">>": ("<<",), "&": ("|",), "|": ("&",), "^": ("|",),
    "&&": ("||",), "||": ("&&",), "++": ("--",), "--": ("++",), "+=": ("-=",), "-=": ("+=",),
    "*=": ("/=",), "/=": ("*=",), "&=": ("|=",), "|=": ("&=",), "^=": ("|=",),
    "<<=": (">>=",), ">>=": ("<<=",)}  # fmt: skip
ASSIGNMENTS = {"=", "<<=", ">>=", "+=", "-=", "*=", "/=", "&=", "|=", "^="}
SUCCESS = {
    "HRESULT": "S_OK",
    "STDMETHODIMP": "S_OK",
    "Status": "Status::kOk",
    "ViStatus": "VI_SUCCESS",
    "bool": "true",
}
BEFORE_BODY = {")", "}", "const", "noexcept", "override", "else", "do", "try", "mutable"}
CONDITIONS = {"if", "while", "for"}
NO_CALL = CONDITIONS | set(
    """switch catch return throw delete new sizeof alignof decltype using static_assert case goto
    noexcept else do constexpr default co_return""".split()
)
NAME_OR_MEMBER = re.compile(r"[A-Za-z_]\w*((\.|->|::)[A-Za-z_]\w*)*")


class Source:
    """A source in tokens and what its brackets mean, by the spaces that clang-format sets."""

    def __init__(self, text):
        self.text = text
        found = [m for m in TOKEN.finditer(text) if m.lastgroup != "skip"]
        self.tokens = [m[0] for m in found] + [""]
        self.kinds = [m.lastgroup for m in found] + [""]
        self.places = [m.span() for m in found] + [(len(text), len(text))]
        self._match_brackets()
        self._find_functions()
        self._find_skipped()

    def changes(self):
        """All changes as (start, end, new text), by place; no two are alike, and none changes the
        number of lines.
        """
        found = set()
        for i, token in enumerate(self.tokens):
            if i in self.skipped:
                continue
            found.update(self._replace(i, i, new) for new in self._other_tokens(i))
            if self.function[i] is None:
                continue
            found.update(self._remove_call(i))
            if token == "return":
                found.update(self._succeed(i))
            elif token == "?":
                found.update(self._negate(self._condition_start(i), i))
            elif token == "(" and self.tokens[i - 1] in ("if", "while"):
                found.update(self._negate(self._condition_start(self.partner[i]), self.partner[i]))
            elif token == "(" and self._calls(i - 1):
                found.update(self._swap_arguments(i))
        return sorted(found)

    def _opens_template(self, i):
        return not self._spaced(i) and self.tokens[i - 1] != "operator"

    def _calls(self, i):
        """Whether a bracket behind this token begins the arguments of a call."""
        if self.kinds[i] == "name":
            return self.tokens[i] not in NO_CALL
        return self.tokens[i] == ">" and not self._spaced(i)

    def _between(self, first, last):
        return self.text[self.places[first][0] : self.places[last][1]]

    def _replace(self, first, last, new):
        lost_lines = self._between(first, last).count("\n") - new.count("\n")
        return self.places[first][0], self.places[last][1], new + "\n" * lost_lines

    def _spaced(self, i):
        """Whether spaces surround a sign: then it has two operands and is no reference and no
        template bracket.
        """
        start, end = self.places[i]
        return self.text[start - 1 : start].isspace() and self.text[end : end + 1].isspace()

    def _match_brackets(self):
        """The partner of each bracket, that of template arguments, too, and the innermost ( [ {
        around each token.
        """
        self.partner, self.opener, self.around = {}, {}, []
        opened, angles = [], []

        def match(start, end):
            self.partner[start], self.opener[end] = end, start

        for i, token in enumerate(self.tokens):
            is_sign = self.kinds[i] == "sign"
            if is_sign and token in ")]}" and opened:
                match(opened.pop(), i)
            self.around.append(opened[-1] if opened else None)
            if is_sign and token in "([{":
                opened.append(i)
            elif token == "<" and is_sign and self._opens_template(i):
                angles.append(i)
            elif is_sign and token in (">", ">>") and not self._spaced(i):
                for opening in angles[-1 : -1 - len(token) : -1]:
                    match(opening, i)
                del angles[-len(token) :]

    def _find_functions(self):
        """For each token the { of the outermost function body around it, or None."""
        self.function = [None] * len(self.tokens)
        i = 0
        while i < len(self.tokens):
            if self.tokens[i] == "{" and i in self.partner and self.tokens[i - 1] in BEFORE_BODY:
                end = self.partner[i]
                self.function[i + 1 : end] = [i] * (end - i - 1)
                i = end
            i += 1

    def _find_skipped(self):
        """Tokens of static assertions, attributes, template arguments and operator names."""
        self.skipped = set()
        for i, token in enumerate(self.tokens):
            if token in ("operator", "extern"):
                self.skipped.add(i + 1)
            elif token == "static_assert":
                self.skipped.update(range(i, self.partner[i + 1]))
            elif i in self.partner and (token == "<" or token == "[" and self.tokens[i + 1] == "["):
                self.skipped.update(range(i, self.partner[i] + 1))

    def _other_tokens(self, i):
        token, kind = self.tokens[i], self.kinds[i]
        if kind == "number":
            return other_numbers(token)
        if kind in ("text", "char"):
            return other_texts(token)
        return OPERATORS.get(token, ()) if token in ("++", "--") or self._spaced(i) else ()

    def _condition_start(self, end):
        """Where the condition begins that ends before a token of the same bracket."""
        if self.tokens[end] == ")":
            opening, stops = self.opener[end], {";"}
        else:
            opening, stops = self.around[end], ASSIGNMENTS | {",", ";", "?", ":", "}", "return"}
        start = end
        while start - 1 > opening and self.tokens[start - 1] not in stops:
            start = self.opener.get(start - 1, start - 1)
        return start

    def _negate(self, first, end):
        # A variable's declaration has no negation.
        if first < end and "=" not in self.tokens[first:end]:
            yield self._replace(first, end - 1, f"!({self._between(first, end - 1)})")

    def _succeed(self, i):
        """The success of the function's result type in place of what is returned."""
        head = self.function[i]
        while head > 0 and self.tokens[head - 1] not in (";", "{", "}"):
            head -= 1
        before = self.tokens[head : self.function[i]]
        result = itertools.takewhile(lambda token: token != "(", before)
        success = next((SUCCESS[name] for name in result if name in SUCCESS), None)
        end = i + 1
        while self.tokens[end] not in (";", ""):
            end = self.partner.get(end, end) + 1
        if success and end > i + 1 and self._between(i + 1, end - 1) != success:
            yield self._replace(i + 1, end - 1, success)

    def _swap_arguments(self, opening):
        """Neighbouring arguments that are names or members, and so may well be of one type."""
        end = self.partner[opening]
        commas = [
            i
            for i in range(opening + 1, end)
            if self.tokens[i] == "," and self.around[i] == opening and i not in self.skipped
        ]
        cuts = [opening, *commas, end]
        for before, comma, after in zip(cuts, cuts[1:], cuts[2:]):
            left, right = self._between(before + 1, comma - 1), self._between(comma + 1, after - 1)
            if left != right and NAME_OR_MEMBER.fullmatch(left) and NAME_OR_MEMBER.fullmatch(right):
                space = self.text[self.places[comma][0] : self.places[comma + 1][0]]
                yield self._replace(before + 1, after - 1, right + space + left)

    def _remove_call(self, first):
        """A statement that is nothing but a call; its semicolon stays."""
        before = self.tokens[first - 1]
        space = self.text[self.places[first - 1][1] : self.places[first][0]]
        begins = (
            before in (";", "{", "}", "else")
            or before == ":"
            and "\n" in space  # a label, no choice
            or before == ")"
            and self.tokens[self.opener[first - 1] - 1] in CONDITIONS
        )
        if not begins or self.tokens[self.around[first]] != "{":
            return
        i, may_be_name = first, True
        while self.tokens[i] != ";":
            if self.kinds[i] == "name" and may_be_name and self.tokens[i] not in NO_CALL:
                may_be_name = False
            elif self.tokens[i] in ("::", ".", "->"):
                may_be_name = True
            elif self.tokens[i] in ("(", "[", "<") and i in self.partner:
                i, may_be_name = self.partner[i], False
            else:
                return
            i += 1
        if i > first and self.tokens[i - 1] == ")":
            yield self._replace(first, i - 1, "")


def other_numbers(token):
    whole = re.fullmatch(r"(0[xX][\da-fA-F']+|0[bB][01']+|[\d']+)([uUlLzZ]*)", token)
    if not whole:
        return [f"({token} + 1)"] + (["0.0"] if re.match(r"[0.]*[1-9]", token) else [])
    digits = whole[1].replace("'", "")
    value = int(digits, 8 if re.fullmatch(r"0\d+", digits) else 0)
    form = hex if digits[:2] in ("0x", "0X") else str
    return [
        form(n) + whole[2]
        for n in dict.fromkeys((value + 1, value - 1, 0))
        if n >= 0 and n != value
    ]


def other_texts(token):
    """The literal with one character changed, always the same one. Escape sequences stay as they
    are.
    """
    body = re.fullmatch(
        r"""(\w*R"[^(]*\(|\w*["'])(.*?)(\)[^)"]*"\w*|["']\w*)""", token, re.DOTALL
    ).span(2)
    escape_or_plain = re.compile(r"\\x[\da-fA-F]+|\\u.{4}|\\[0-7]{1,3}|\\.|(.)", re.DOTALL)
    plain = [m.start() for m in escape_or_plain.finditer(token, *body) if m[1]]
    plain = [i for i in plain if token[i].isascii() and token[i].isalnum()] or plain
    if not plain:
        return []
    at = plain[int(hashlib.sha256(token.encode()).hexdigest(), 16) % len(plain)]
    other = {"z": "a", "Z": "A", "9": "0", "~": "^"}.get(token[at])
    other = other or (
        chr(ord(token[at]) + 1) if token[at].isascii() and token[at].isalnum() else "~"
    )
    return [token[:at] + other + token[at + 1 :]]


Mutant = collections.namedtuple("Mutant", "file line start end new text change")


def identity(mutant):
    """What a line of tests/mutants-accepted begins with: it outlives other changes of the file."""
    return f"{mutant.file} | {mutant.text} | {mutant.change}"


def short(text):
    """On one line, and no longer than tells one change from another."""
    line = " ".join(text.split())
    return line if len(line) <= 60 else line[:57] + "..."


def mutants_of(file, text):
    seen = collections.Counter()
    for start, end, new in Source(text).changes():
        line_start = text.rfind("\n", 0, start) + 1
        line_text = text[line_start:].split("\n", 1)[0].strip()
        change = f"'{short(text[start:end])}' -> '{short(new)}'"
        seen[line_text, change] += 1
        if seen[line_text, change] > 1:
            change += f" #{seen[line_text, change]}"
        yield Mutant(file, text.count("\n", 0, start) + 1, start, end, new, line_text, change)


def in_order_of(seed, mutants):
    """One mutant of each line before the second of any; else by chance, but so that editing one
    line moves no other.
    """

    def chance(mutant):
        return hashlib.sha256(f"{seed} {identity(mutant)}".encode()).hexdigest()

    lines = collections.Counter()
    keyed = []
    for mutant in sorted(mutants, key=chance):
        keyed.append((lines[mutant.file, mutant.line], chance(mutant), mutant))
        lines[mutant.file, mutant.line] += 1
    return [mutant for _, _, mutant in sorted(keyed)]
