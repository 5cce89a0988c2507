"""Finds what can be changed in a C++ source that clang-format has formatted, and how.

It goes by words, not by syntax; the format tells the rest: an operator of two operands has a space on both sides, which
those of templates, pointers and references never have. Comments, texts, directives and assertions are left alone.
"""
import dataclasses
import re

KINDS = ["comparison", "boundary", "logic", "condition", "call", "constant", "return", "arithmetic"]

_WORDS = re.compile(r"""
    (?P<skip>//[^\n]* | /\*.*?\*/ | ^[ \t]*\#(?:[^\n\\]|\\.)* | R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"
        | "(?:[^"\\\n]|\\.)*" | '(?:[^'\\\n]|\\.)*')
  | (?P<number>\b(?:0[xX][0-9a-fA-F']+ | \d[\d']*(?:\.\d+)?)\w*)
  | (?P<name>\b[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|\.\.\.|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])
    """, re.X | re.S | re.M)

_OPPOSITES = {"==": "!=", "!=": "==", "<": ">=", ">=": "<", ">": "<=", "<=": ">"}
_BOUNDARIES = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
_LOGIC = {"&&": "||", "||": "&&"}
_ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "+=": "-=", "-=": "+=", "*=": "/=",
               "|=": "&=", "&=": "|=", "++": "--", "--": "++"}
_CLOSES = {"(": ")", "[": "]", "{": "}"}
_NO_CALLS = {"return", "delete", "throw", "case", "using", "goto", "if", "for", "while", "switch", "forever", "else", "new", "do"}
_DEFAULTS = {"", "{}", "false", "nullptr", "0"}


@dataclasses.dataclass(frozen=True)
class Word:
    kind: str  # number, name, sign or skip (a text or a character)
    text: str
    begin: int
    end: int


@dataclasses.dataclass(frozen=True)
class Change:
    """One mutant: what stands at a place of the source, and what stands there instead."""
    kind: str
    begin: int
    end: int
    text: str

    def apply(self, source):
        return source[:self.begin] + self.text + source[self.end:]


def _words(source):
    words = []
    for match in _WORDS.finditer(source):
        kind = match.lastgroup if match.lastgroup != "mark" else "skip"
        text = match.group()
        if kind == "skip" and text.lstrip()[0] in "/#":
            continue
        words.append(Word(kind, text, match.start(), match.end()))
    return words


def _partners(words):
    """The index of the closing bracket by that of the opening one."""
    partners, open_ones = {}, []
    for index, word in enumerate(words):
        if word.kind != "sign":
            continue
        if word.text in _CLOSES:
            open_ones.append(index)
        elif open_ones and word.text == _CLOSES[words[open_ones[-1]].text]:
            partners[open_ones.pop()] = index
    return partners


def _left_alone(words, partners):
    """Indexes of words that are inside of assertions and of what is no code at run time."""
    alone = set()
    for index, word in enumerate(words):
        if word.text.startswith("Q_") or word.text in ("static_assert", "alignas", "TEXT"):
            if index + 1 in partners:
                alone.update(range(index, partners[index + 1] + 1))
    return alone


def _of_two(source, word):
    return source[word.begin - 1:word.begin] in " \n" and source[word.end:word.end + 1] in " \n"


def _signs(source, words, alone):
    for index, word in enumerate(words):
        if word.kind != "sign" or index in alone or words[index - 1].text == "operator":
            continue
        text = word.text
        if _of_two(source, word):
            for kind, table in (("comparison", _OPPOSITES), ("boundary", _BOUNDARIES), ("logic", _LOGIC),
                                ("arithmetic", _ARITHMETIC)):
                if text in table:
                    yield Change(kind, word.begin, word.end, table[text])
        elif text in ("++", "--"):
            yield Change("arithmetic", word.begin, word.end, _ARITHMETIC[text])
        elif text == "!":
            yield Change("condition", word.begin, word.end, "")


def _other_number(text):
    """Another number of the same form; None for one that isn't understood."""
    match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|\d[\d']*)(\.\d+)?([a-zA-Z_]*)", text)
    if not match or (match[1][:2] not in ("0x", "0X") and len(match[1]) > 1 and match[1][0] == "0"):
        return None
    value = int(match[1].replace("'", ""), 0)
    # A neighbour of a count; of what is longer a number that somebody would notice.
    other = value + 1 if value <= 32 else value * 2
    if match[1][:2] in ("0x", "0X"):
        return f"0x{value ^ 1:0{len(match[1]) - 2}x}" + match[3]
    return f"{other}{match[2] or ''}{match[3]}"


def _constants(source, words, alone):
    for index, word in enumerate(words):
        if index in alone:
            continue
        if word.kind == "number" and source[word.end:word.end + 1] != ">" and source[word.begin - 1] != "<":
            other = _other_number(word.text)
            if other is not None:
                yield Change("constant", word.begin, word.end, other)
        elif word.kind == "name" and word.text in ("true", "false"):
            yield Change("constant", word.begin, word.end, "false" if word.text == "true" else "true")


def _at_depth(words, partners, first, last):
    """Words between two indexes that are in no bracket of their own."""
    index = first
    while index < last:
        yield index
        index = partners.get(index, index) + 1


def _conditions(source, words, partners, alone):
    for index, word in enumerate(words):
        if word.text not in ("if", "while") or index in alone or index + 1 not in partners:
            continue
        first, last = index + 2, partners[index + 1]
        for inner in _at_depth(words, partners, first, last):
            if words[inner].text == ";":
                first = inner + 1
        if first < last and not any(words[inner].text == "=" for inner in _at_depth(words, partners, first, last)):
            begin, end = words[first].begin, words[last].begin
            yield Change("condition", begin, end, f"!({source[begin:end]})")


def _calls(source, words, partners, alone):
    """Statements that are a call and nothing else."""
    for index, word in enumerate(words):
        if index == 0 or word.kind != "name" or word.text in _NO_CALLS or index in alone:
            continue
        if words[index - 1].text not in (";", "{", "}") or source[source.rfind("\n", 0, word.begin) + 1:word.begin].strip():
            continue
        if _is_call(words, partners, index):
            end = next(i for i in _at_depth(words, partners, index, len(words)) if words[i].text == ";")
            if any(word.text == "reserve" for word in words[index:end]):
                continue  # of which nobody could see the lack
            yield Change("call", word.begin, words[end].end, ";")


def _is_call(words, partners, index):
    """Whether a statement that begins there is a call: names and brackets joined by . -> and ::, a bracket at the end."""
    if words[index].text == "emit":
        index += 1
    wants_name = True
    while index < len(words):
        text = words[index].text
        if wants_name:
            if words[index].kind != "name":
                return False
            wants_name = False
            index += 1
        elif text in (".", "->", "::"):
            wants_name = True
            index += 1
        elif text in ("(", "[") and index in partners:
            index = partners[index] + 1
        else:
            return text == ";" and words[index - 1].text == ")"
    return False


def _returns(source, words, partners, alone):
    for index, word in enumerate(words):
        if word.text != "return" or index in alone or index + 1 == len(words):
            continue
        end = next((i for i in _at_depth(words, partners, index + 1, len(words)) if words[i].text in (";", "}")), None)
        if end is None or words[end].text != ";":
            continue
        begin = words[index + 1].begin
        value = source[begin:words[end].begin]
        if value not in _DEFAULTS and not re.fullmatch(r"\w+(\(\)|\{\})", value) and value != "true":
            yield Change("return", begin, words[end].begin, "{}")


def changes(source):
    """All that can be changed, in the order of their places."""
    words = _words(source)
    partners = _partners(words)
    alone = _left_alone(words, partners)
    found = [*_signs(source, words, alone), *_constants(source, words, alone), *_conditions(source, words, partners, alone),
             *_calls(source, words, partners, alone), *_returns(source, words, partners, alone)]
    return sorted(found, key=lambda change: (change.begin, KINDS.index(change.kind), change.text))
