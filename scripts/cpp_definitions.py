# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
"""Finds definitions in C++ sources by their names, and tokens and statements in them, as far as this project's style goes."""

import dataclasses
import re

TOKEN = re.compile(
    r'(?P<comment>//[^\n]*|/\*.*?\*/)'
    r'|(?P<directive>^[ \t]*\#[^\n]*(?:\\\n[^\n]*)*)'
    r'|(?P<text>(?:u8|u|U|L)?R"(?P<mark>[^()\s]*)\(.*?\)(?P=mark)"\w*|(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*"\w*)'
    r"|(?P<number>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)"
    r"|(?P<character>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+')"
    r'|(?P<word>[A-Za-z_]\w*)'
    r'|(?P<sign><<=|>>=|<=>|\.\.\.|->\*|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\S)',
    re.DOTALL | re.MULTILINE)
CLOSING = {"(": ")", "[": "]", "{": "}"}
CONTAINERS = {"namespace", "class", "struct", "enum", "union", "extern"}


@dataclasses.dataclass(frozen=True)
class Token:
    text: str
    start: int
    end: int
    kind: str


def tokens_of(source):
    """Every token but comments and directives of the preprocessor."""
    return [Token(found.group(), found.start(), found.end(), found.lastgroup)
            for found in TOKEN.finditer(source) if found.lastgroup not in ("comment", "directive")]


def end_of_group(tokens, opening):
    """The place behind the bracket that closes the one at the place @p opening."""
    depth = 0
    for place in range(opening, len(tokens)):
        if tokens[place].text in CLOSING:
            depth += 1
        elif tokens[place].text in CLOSING.values():
            depth -= 1
            if depth == 0:
                return place + 1
    return len(tokens)


def name_of(head):
    """The name that a definition has, given its tokens before the body, value or semicolon."""
    words = [token.text for token in head]
    for place, word in enumerate(words):
        if word == "operator":
            return "operator" + "".join(words[place + 1:place + 3]).rstrip("(")
        if word == "(" and place > 0 and head[place - 1].kind == "word" and words[place - 1] != "alignas":
            return words[place - 1]
        if word in ("=", "{"):
            words = words[:place]
            break
    while words and words[-1] == "]":
        words = words[:len(words) - 1 - words[::-1].index("[")]
    return words[-1] if words else ""


def definitions_of(tokens, start=0, end=None):
    """(name, first place, place behind the last) of functions, constants and tables, those inside of classes too."""
    end = len(tokens) if end is None else end
    place = head = start
    while place < end:
        text = tokens[place].text
        if text == ";":
            yield name_of(tokens[head:place]), head, place + 1
            place = head = place + 1
        elif text == "{":
            words = {token.text for token in tokens[head:place]}
            behind = end_of_group(tokens, place)
            if words & CONTAINERS and not words & {"(", "="}:
                yield from definitions_of(tokens, place + 1, behind - 1)
                yield name_of(tokens[head:place]), head, behind
            elif behind < end and tokens[behind].text in (";", ",", "{"):
                place = behind # a value, or a member's in front of a constructor's body
                continue
            else:
                yield name_of(tokens[head:place]), head, behind
            place = behind
            if place < end and tokens[place].text == ";":
                place += 1
            head = place
        elif text in ("(", "["):
            place = end_of_group(tokens, place)
        elif text == ":" and tokens[place - 1].text in ("public", "private", "protected", "Q_SLOTS", "Q_SIGNALS"):
            place = head = place + 1
        else:
            place += 1


def places_of(tokens, wanted, start, end):
    """Where the texts @p wanted stand one after the other."""
    texts = [token.text for token in tokens[start:end]]
    return [start + place for place in range(len(texts) - len(wanted) + 1)
            if texts[place:place + len(wanted)] == wanted]


def statement_at(tokens, place, start, end):
    """(first place, place behind) of the smallest statement in start to end that holds the token at @p place."""
    depth = 0
    first = place
    while first > start: # back to the end of the statement in front
        text = tokens[first - 1].text
        if text in (")", "]"):
            depth += 1
        elif text in ("(", "["):
            depth -= 1
        elif depth <= 0 and text in (";", "{", "}"):
            break
        first -= 1
    behind = first
    while behind < end:
        text = tokens[behind].text
        if text in ("(", "["):
            behind = end_of_group(tokens, behind)
        elif text == "{":
            behind = end_of_group(tokens, behind)
            if behind >= end or tokens[behind].text not in (";", ",", ")", "else", "{"):
                break
        elif text == ";":
            behind += 1
            break
        else:
            behind += 1
    return first, behind


class NotFound(Exception):
    """A source has no such definition, or not what is looked for in it."""


def ranges_of(tokens, name):
    """Where the definitions of this name are, each once."""
    ranges = []
    for found, start, end in sorted(definitions_of(tokens), key=lambda one: (one[1], -one[2])):
        if found == name and (not ranges or start >= ranges[-1][1]):
            ranges.append((start, end))
    return ranges


def found_in(tokens, name, wanted, which):
    """(place, start and end of its definition) where @p wanted stands: the only time for which 0, else that time from 1."""
    found = [(place, start, end) for start, end in ranges_of(tokens, name)
             for place in places_of(tokens, wanted, start, end)]
    if not found or (which == 0 and len(found) > 1) or which > len(found):
        raise NotFound(f"{' '.join(wanted)} stands {len(found)} times in {name}")
    return found[max(which, 1) - 1]


def without(source, name, text, which=0):
    """The source without the smallest statement of the definition that holds the tokens of @p text."""
    tokens = tokens_of(source)
    place, start, end = found_in(tokens, name, [token.text for token in tokens_of(text)], which)
    first, behind = statement_at(tokens, place, start, end)
    return source[:tokens[first].start] + source[tokens[behind - 1].end:]


def replaced(source, name, text, new_text, which=0):
    """The source with other text in place of the tokens of @p text in the definition."""
    tokens = tokens_of(source)
    wanted = [token.text for token in tokens_of(text)]
    place, _, _ = found_in(tokens, name, wanted, which)
    return f"{source[:tokens[place].start]} {new_text} {source[tokens[place + len(wanted) - 1].end:]}"
