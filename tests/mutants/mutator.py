"""Makes small changes to C++ sources, each of which a test should notice. Works on tokens and knows no types, so some
changes do not compile."""

import hashlib
import re

TOKEN = re.compile(r"""
    (?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*|\[\[.*?\]\]|__attribute__\(\(.*?\)\)+)
  | (?P<text>"(?:[^"\\\n]|\\.)*")
  | (?P<char>'(?:[^'\\\n]|\\.)+')
  | (?P<number>\b\d[\w']*(?:\.\d+)?)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<operator><<=|>>=|<=>|->|\+\+|--|&&|\|\||[=!<>+*/%&|^-]=|<<|>>|::|\.\.\.|[-+*/%<>=!&|^~?:;,.(){}\[\]])
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

OPERATORS = {"comparison": {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"},
             "arithmetic": {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "++": "--", "--": "++", "+=": "-=",
                            "-=": "+="},
             "condition": {"&&": "||", "||": "&&"}}
WITH_BLANKS = {"<", ">", "+", "-", "*", "/", "%", "&&"}  # otherwise a sign, the bracket of a template, a reference
NO_STATEMENT = {"using", "namespace", "static_assert", "friend", "template", "class", "struct", "enum", "extern",
                "typedef", "public", "private", "protected", "alignas", "while"}  # the last one ends a do
TYPES_AND_SCOPES = {"namespace", "class", "struct", "enum", "extern"}
BEFORE_A_BODY = {"const", "override", "noexcept", "else", "do", "try"}
EMPTY = {"{}", "false", "0", "nullptr", '""', "std::nullopt"}  # what `return {}` returns as well
GUARD = re.compile(r"(const )?std::lock_guard\b")
DECLARATION = re.compile(r"(?!return|throw|delete|goto|co_)(?:[\w:]+(?:<[^;=]*?>)?[\s*&]+)+(\w+)\s*(?:[={(\[]|$)")

SHAPES = {"lambda": r"\[", "list": r"\{", "order": "std::memory_order", "self": r"this$", "text": r'"|kSource$',
          "number": r"\d|sizeof\b|static_cast<(std::size_t|int|unsigned)>|\w+\.size\(\)"}
EQUALITY = re.compile(r"[^=!<>&|]*[=!]=[^=!<>&|]*")  # its comparison is changed already


class Token:
    def __init__(self, kind, text, start):
        self.kind, self.text, self.start, self.end = kind, text, start, start + len(text)
        self.in_body = False  # of a function


class Mutant:
    """One change: source[start:end] becomes `new`."""

    def __init__(self, file, source, kind, start, end, new):
        self.file, self.kind, self.start, self.end, self.new = file, kind, start, end, new
        self.line = source.count("\n", 0, start) + 1
        line_start, line_end = source.rfind("\n", 0, start) + 1, source.find("\n", end)
        shown = f"{source[line_start:start]}[{source[start:end]} -> {new}]{source[end:line_end]}"
        self.name = f"{file} {kind} {' '.join(shown.split())}"  # no line number: it outlives changes elsewhere

    def applied_to(self, source):
        return source[:self.start] + self.new + source[self.end:]


def tokens_of(source):
    tokens = [Token(m.lastgroup, m.group(), m.start()) for m in TOKEN.finditer(source) if m.lastgroup != "skip"]
    mark_bodies(tokens)
    return without_checks_of_the_compiler(tokens)


def mark_bodies(tokens):
    """A brace opens a body, or something in one, unless it opens a namespace, a type, or the value of a variable."""
    outer, begin = [False], 0
    for index, token in enumerate(tokens):
        token.in_body = outer[-1]
        if token.text == "{":
            head = {t.text for t in tokens[begin:index]}
            before = tokens[index - 1]
            is_type = head & TYPES_AND_SCOPES and ("(" not in head or before.text == ">")
            is_value = before.kind == "word" and before.text not in BEFORE_A_BODY
            outer.append(outer[-1] or not (is_type or is_value or before.text in ("=", "]", "{", ",")))
        elif token.text == "}" and len(outer) > 1:
            outer.pop()
        if token.text in ("{", "}", ";"):
            begin = index + 1


def without_checks_of_the_compiler(tokens):
    kept, index = [], 0
    while index < len(tokens):
        if tokens[index].text == "static_assert":
            index = closing(tokens, index + 1) + 1
            continue
        kept.append(tokens[index])
        index += 1
    return kept


def closing(tokens, opening):
    """Index of the bracket that closes the one at `opening`."""
    depth = 0
    for index in range(opening, len(tokens)):
        if tokens[index].kind == "operator":
            depth += tokens[index].text in "([{"
            depth -= tokens[index].text in ")]}"
            if depth == 0:
                return index
    raise ValueError(f"nothing closes '{tokens[opening].text}'")


def token_changes(source, tokens, enumerators):
    for index, token in enumerate(tokens):
        before, old = tokens[index - 1].text if index else "", token.text
        blanks = source[token.start - 1:token.start] == " " and source[token.end:token.end + 1] in (" ", "\n")
        if token.kind == "operator" and (old not in WITH_BLANKS or blanks) and before != "operator":
            beside = {t.kind for t in tokens[index - 1:index + 2]}
            if old not in ("+", "+=") or not beside & {"text", "char"}:
                yield from ((kind, token.start, token.end, table[old])
                            for kind, table in OPERATORS.items() if old in table)
        elif token.kind == "number" and not is_size_of_array(tokens, index) and not is_pure(tokens, index):
            yield from number_changes(token)
        elif old in ("true", "false"):
            yield "constant", token.start, token.end, "false" if old == "true" else "true"
        elif token.kind in ("text", "char") and before != "extern":
            yield from text_changes(token)
        elif old in enumerators and tokens[index + 1].text == "::" and tokens[index + 2].text in enumerators[old]:
            names, used = enumerators[old], tokens[index + 2]
            yield "enumerator", used.start, used.end, names[(names.index(used.text) + 1) % len(names)]


def is_size_of_array(tokens, index):
    """In `char text[32]`: a larger one does no harm."""
    return (tokens[index - 1].text == "[" and tokens[index + 1].text == "]" and tokens[index - 2].kind == "word" and
            tokens[index - 3].kind == "word" and tokens[index - 3].text != "return")


def is_pure(tokens, index):
    """In `virtual void run() = 0;`"""
    return tokens[index - 1].text == "=" and tokens[index - 2].text in (")", "const")


def number_changes(token):
    match = re.fullmatch(r"(0x[\da-f]+|\d[\d']*)([uUlL]*)", token.text)
    if match:
        value, suffix = int(match.group(1).replace("'", ""), 0) + 1, match.group(2)
        yield "constant", token.start, token.end, (hex(value) if "x" in token.text else str(value)) + suffix


def text_changes(token):
    """One character, always the same one, that is no part of an escape sequence or of a conversion."""
    units = list(re.finditer(r"\\(?:x[\da-f]+|[0-7]{1,3}|.)|%[\d.]*l*\w|.", token.text[1:-1]))
    units = [unit for unit in units if len(unit.group()) == 1]
    if units:
        unit = units[int(hashlib.sha256(token.text.encode()).hexdigest(), 16) % len(units)]
        start = token.start + 1 + unit.start()
        yield "text", start, start + 1, "Y" if unit.group() == "X" else "X"


def statement_changes(source, tokens):
    """Statements are deleted, locks let go at once; `return` returns an empty value; conditions are negated."""
    begin, depth, outer = 0, 0, []
    for index, token in enumerate(tokens):
        following = tokens[index + 1].text if index + 1 < len(tokens) else ""
        if token.text in ("if", "while"):
            opening = index + 1 + (following == "constexpr")
            end = closing(tokens, opening)
            inside = source[tokens[opening].end:tokens[end].start]
            if ";" not in inside and not DECLARATION.match(inside) and not EQUALITY.fullmatch(inside):
                yield "condition", tokens[opening].end, tokens[end].start, f"!({inside})"
            if tokens[end + 1].text not in "{;":
                begin = end + 1  # the one statement that depends on it
        if token.kind != "operator":
            continue
        depth += (token.text in "([") - (token.text in ")]")
        if token.text == "{":
            outer.append((begin, depth))
            begin, depth = index + 1, 0
        elif token.text == "}":
            begin, depth = outer.pop()
            if depth == 0 and following not in (";", ",", ")", ".", ":", "?"):  # with these an expression goes on
                begin = index + 1
        elif token.text == ";" and depth == 0:
            if index > begin and token.in_body:
                yield from changes_of_statement(source, tokens, begin, index)
            begin = index + 1


def changes_of_statement(source, tokens, begin, end):
    while tokens[begin].text in ("else", "case", "default"):
        begin += 1 + next((n for n, t in enumerate(tokens[begin:end]) if t.text in (":", "else")), end)
        if begin >= end:
            return
    first, statement = tokens[begin], source[tokens[begin].start:tokens[end].start]
    if first.text == "return":
        value = source[first.end:tokens[end].start].strip()
        if value and value not in EMPTY and value != "*this":
            yield "return", tokens[begin + 1].start, tokens[end].start, "{}"
    elif GUARD.match(statement):
        yield "lock", first.start, tokens[end].end, f"{{ {statement}; }}"
    elif first.text not in NO_STATEMENT | {"}", ")"} and "static_cast<void>" not in statement and \
            not is_needed_declaration(tokens, statement, end):
        yield "deleted", first.start, tokens[end].start, ""


def is_needed_declaration(tokens, statement, end):
    """Without it what comes later in its block does not compile."""
    name = DECLARATION.match(statement)
    depth = 0
    for token in tokens[end + 1:] if name else ():
        depth += (token.text == "{") - (token.text == "}")
        if depth < 0:
            return False
        if token.text == name.group(1):
            return True
    return False


NEVER_SWAPPED = ("if", "while", "for", "min", "max")  # the last two answer the same


def argument_changes(source, tokens):
    for index, token in enumerate(tokens[1:], 1):
        called = tokens[index - 1]
        if token.text != "(" or not token.in_body or called.kind != "word" or called.text in NEVER_SWAPPED:
            continue
        arguments, begin, depth, end = [], index + 1, 0, closing(tokens, index)
        for place in range(index + 1, end + 1):
            depth += tokens[place].text in ("(", "{", "[")
            depth -= tokens[place].text in (")", "}", "]")
            if place == end or (depth == 0 and tokens[place].text == ","):
                arguments.append((begin, place - 1))
                begin = place + 1
        for first, second in zip(arguments, arguments[1:]):
            one, other = (source[tokens[a].start:tokens[b].end] for a, b in (first, second))
            if one != other and "\n" not in one + other and not are_unlike(one, other):
                yield "swapped", tokens[first[0]].start, tokens[second[1]].end, f"{other}, {one}"


def are_unlike(one, other):
    """They can hardly stand for each other."""
    shapes = [next((shape for shape, pattern in SHAPES.items() if re.match(pattern, argument)), "")
              for argument in (one, other)]
    return shapes[0] != shapes[1] and (set(shapes) & {"lambda", "list", "order", "self"} or "" not in shapes)


def enumerators_of(sources):
    found = {}
    for source in sources:
        for match in re.finditer(r"enum class (\w+)[^{;]*\{([^}]*)\}", source):
            body = re.sub(r"//[^\n]*", "", match.group(2))
            names = [part.split("=")[0].strip() for part in body.split(",") if part.strip()]
            if len(names) > 1:
                found[match.group(1)] = names
    return found


def mutants_of(sources):
    """All mutants of {file: source}, in the order of files and places. No two have the same name."""
    enumerators, found, seen = enumerators_of(sources.values()), [], {}
    for file, source in sorted(sources.items()):
        tokens = tokens_of(source)
        changes = (*token_changes(source, tokens, enumerators), *statement_changes(source, tokens),
                   *argument_changes(source, tokens))
        found += [Mutant(file, source, *change) for change in sorted(changes, key=lambda c: (c[1], c[2], c[0], c[3]))]
    for mutant in found:
        seen[mutant.name] = seen.get(mutant.name, 0) + 1
        if seen[mutant.name] > 1:
            mutant.name += f" #{seen[mutant.name]}"
    return found
