"""What the library's sources say about its log lines and operations, for the checks of the guide."""

import re

STATEMENT = re.compile(r'(?:self->|[^\w:])log\(\s*(\w+|policy\.giveUpLevel),\s*kSource,\s*("[^"]*"),\s*([\w.>-]+),\s*"((?:[^"\\]|\\.)*)"')
CALL = re.compile(r"(?:self->|[^\w:])log\(")


def read(root, name):
    return (root / "src/kelarc" / name).read_text()


def rows(root, name, pattern):
    found = re.findall(pattern, read(root, name), re.M)
    if not found:
        raise SystemExit(f"no rows found in {name}: has the table changed its shape?")
    return found


def levels_and_lines(root, level, line, text):
    """Of a statement that takes them from a table or a variable."""
    if line == "policy.giveUpLine":
        policies = rows(root, "CallPolicy.h", r"^constexpr CallPolicy \w+ *\{.*Tell::(\w+), +(\d+), +(\d+) \};")
        told = [(int(level), int(line)) for tell, level, line in policies if tell != "never"]
        return {level for level, _ in told}, {line for _, line in told}
    if line == "setting.unknownReplyLine":
        return {int(level)}, {int(row) for row in rows(root, "SettingTable.h", r'^constexpr Setting \w+ *\{"[^"]*", +(\d+),')}
    return {int(level)}, {int(line)}


# What stands between the texts of the result line, as a format would have it.
SHOWN = {"retriesLeft": "%d", "callText": "%s", "elapsedMs": "%u", "result::textOf(code)": "%s", "code": "%d"}


def result_line(root):
    """Written piece by piece, without a format -> text, function, line."""
    function, line, pieces = re.search(r'line << "KelArc::(\w+)\.(\d+): (.*?);\n', read(root, "Log.cpp"), re.S).groups()
    parts = (part.strip() for part in ('"' + pieces).split("<<"))
    return "".join(part[1:-1] if part.startswith('"') else SHOWN[part] for part in parts), function, line


def statements(root):
    """Every text that can be logged -> (levels, functions, lines)."""
    found = {}
    text, function, line = result_line(root)
    add(found, text, set(map(int, re.findall(r"\blevel = (\d);", read(root, "Call.cpp")))), function, {int(line)})
    for path in sorted((root / "src").rglob("*.cpp")):
        source = path.read_text()
        matches = STATEMENT.findall(source)
        calls = len(CALL.findall(source))
        if len(matches) != calls:
            raise SystemExit(f"{path.name}: {calls} calls of log(), of which {len(matches)} are understood")
        for level, function, line, text in matches:
            if text == "%s":  # the text is the table's
                for row_line, row_text in rows(root, "LstaTable.h", r', +(\d+), "(No callback[^"]*)"\}'):
                    add(found, row_text, {int(level)}, function, {int(row_line)})
                continue
            levels, lines = levels_and_lines(root, level, line, text)
            add(found, text, levels, function, lines)
    return found


def add(found, text, levels, function, lines):
    entry = found.setdefault(text, (set(), set(), set()))
    entry[0].update(levels)
    entry[1].add(function.strip('"'))
    entry[2].update(lines)


def result_texts(root):
    source = read(root, "names.h")
    table = re.search(r"kWords\[\] = \{(.*?)\n\};", source, re.S).group(1)
    texts = re.findall(r'\{"\w+",\s+"((?:[^"\\]|\\.)*)"\}', table)
    return {str(code): text for code, text in enumerate(texts)} | {"other": re.search(r'text : "(.+?)";', source).group(1)}


def operations(root):
    """The public operations that make a request."""
    public = read(root, "KelArc.h").split("private:")[0]
    return set(re.findall(r"^    void (\w+)\(", public, re.M))
