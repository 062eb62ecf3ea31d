#!/usr/bin/env python3
"""Checks the guide against the sources: every log line and result code is explained where it is said to be, with its
level, function and line number, and nothing else is; every operation is in the table of answers.
Usage: check_guide.py PROJECT"""

import pathlib
import re
import sys

import log_lines


def sections(page):
    return re.split(r"^#+ ", page, flags=re.M)


def explained(page):
    """The texts in the code blocks of a section about lines, with the section."""
    return {
        text: section
        for section in sections(page)
        if "{#log_" in section.partition("\n")[0]
        for block in re.findall(r"^```\n(.*?)^```$", section, re.M | re.S)
        for text in block.splitlines()
    }


def line_faults(root, page):
    written, known = explained(page), log_lines.statements(root)
    for text in sorted(written.keys() - known.keys()):
        yield f"explained, but never logged: {text}"
    for text, (levels, functions, lines) in known.items():
        if text not in written:
            yield f"logged, but not explained: {text}"
            continue
        words = written[text]
        missing = [f"level {level}" for level in levels if not re.search(rf"[Ll]evel[ \d,or]* ?\b{level}\b", words)]
        missing += [f"function {name}" for name in functions if f"`{name}`" not in words]
        missing += [f"line {line}" for line in lines if not re.search(rf"\b{line}\b", words)]
        for each in missing:
            yield f"not told about '{text}': {each}"


def result_faults(root, page):
    written = dict(re.findall(r"^\| (\d+|other) \| (.+?) \| .+ \|$", page, re.M))
    written = {code: text.strip("`") for code, text in written.items() if text.startswith("`")}
    known = log_lines.result_texts(root)
    written = {code: text for code, text in written.items() if code in known}
    for code, text in known.items():
        if written.get(code) != text:
            yield f"result code {code} is '{text}', but the page says '{written.get(code)}'"


def operation_faults(root, page):
    table = page.split("## Every operation")[1]
    written = {name for row in re.findall(r"^\| (`.+?) \|", table, re.M) for name in re.findall(r"`(\w+)`", row)}
    known = log_lines.operations(root)
    if len(known) < 30:
        yield f"only {len(known)} operations found in KelArc.h"
    for name in sorted(written ^ known):
        yield f"in the table of answers or in KelArc.h, but not in both: {name}"


def main():
    root = pathlib.Path(sys.argv[1])
    troubleshooting = (root / "docs/guide/troubleshooting.md").read_text()
    answers = (root / "docs/guide/answers.md").read_text()
    faults = [*line_faults(root, troubleshooting), *result_faults(root, troubleshooting), *operation_faults(root, answers)]
    print("\n".join(faults) or f"{len(log_lines.statements(root))} texts and {len(log_lines.result_texts(root))} results explained")
    return 1 if faults else 0


sys.exit(main())
