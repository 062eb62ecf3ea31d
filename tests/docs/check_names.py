#!/usr/bin/env python3
"""Checks what comments and documents name: functions, types and files exist, links lead somewhere, and no table says a
thing twice. Usage: check_names.py PROJECT"""

import pathlib
import re
import sys

CODE = (".h", ".cpp", ".c")
FOLDERS = ("src", "sim", "support", "nmea", "examples", "tools", "tests", "bench", "docs", "scripts", "packaging",
           "debian", "cmake", "scenarios")
# Not ours, and named for people who know it.
FOREIGN = {"openlog", "mlockall", "CMAKE_PREFIX_PATH", "PKG_CONFIG_PATH"}
NAME = re.compile(r"[A-Za-z_]\w*")
CALL = re.compile(r"([A-Za-z_]\w*)\(\)")
LEAST_FILES = 300


def read(root):
    """Name -> text of every file of ours."""
    paths = [path for folder in FOLDERS for path in (root / folder).rglob("*")] + list(root.glob("*"))
    texts = {}
    for path in paths:
        if path.is_file() and "__pycache__" not in path.parts:
            try:
                texts[path.relative_to(root).as_posix()] = path.read_text()
            except UnicodeDecodeError:
                pass
    return texts


def without_comments(name, text):
    return re.sub(r"//[^\n]*", "", text) if name.endswith(CODE) else text


def remarks(name, text):
    """Lines for people, numbered: of a document all but its code blocks, of a source its comments."""
    is_code_block = False
    for number, line in enumerate(text.splitlines(), 1):
        if name.endswith(".md"):
            is_code_block ^= line.startswith("```")
            if not is_code_block:
                yield number, line
        elif name.endswith(CODE) and "//" in line:
            yield number, line.split("//", 1)[1]


def is_identifier(word):
    """Of a program: nobody writes such a word otherwise."""
    return "_" in word.strip("_") or re.search(r"[a-z][A-Z]", word)


def named(line):
    """What a line says exists: names of functions, and identifiers between backticks."""
    yield from ((name, True) for name in CALL.findall(line))
    for span in re.findall(r"`([^`]+)`", line):
        yield from ((word, False) for word in NAME.findall(span) if is_identifier(word))


def name_faults(texts):
    sources = [without_comments(name, text) for name, text in texts.items() if not name.endswith(".md")]
    words = {word for text in sources for word in NAME.findall(text)} | FOREIGN
    functions = {name for text in sources for name in re.findall(r"([A-Za-z_]\w*)\s*\(", text)} | FOREIGN
    for file, text in texts.items():
        for number, line in remarks(file, text):
            for name, is_function in named(line):
                if name not in (functions if is_function else words):
                    yield f"{file}:{number}: there is no {name}{'()' if is_function else ''}"


def file_faults(root, texts):
    for file, text in texts.items():
        if not file.endswith(".md"):
            continue
        for number, line in remarks(file, text):
            for target in re.findall(r"\]\(([^)#]+)(?:#[^)]*)?\)", line):
                if "://" not in target and not (root / file).parent.joinpath(target).exists():
                    yield f"{file}:{number}: the link to {target} leads nowhere"
            for path in re.findall(r"`((?:%s)/[\w./-]+)`" % "|".join(FOLDERS), line):
                is_pattern = re.search(r"\b[A-Z]{3,}$", path)  # TARGET stands for any
                if not is_pattern and not any((root / base / path).exists() for base in ("", "src", "build")):
                    yield f"{file}:{number}: there is no {path}"


def table_faults(texts):
    for file, text in texts.items():
        if not file.endswith(".md"):
            continue
        table, last = set(), 0
        for number, line in remarks(file, text):
            if not line.startswith("| ") or number != last + 1:
                table = set()
            if line.startswith("|"):
                first = line.split(" | ")[0]
                if first in table and NAME.search(first) and "the same" not in first:
                    yield f"{file}:{number}: the table has had this before: {first}"
                table.add(first)
                last = number


def main():
    root = pathlib.Path(sys.argv[1])
    texts = read(root)
    faults = [*name_faults(texts), *file_faults(root, texts), *table_faults(texts)]
    if len(texts) < LEAST_FILES:
        faults.append(f"only {len(texts)} files found below {root}: wrong folder?")
    print("\n".join(faults) or f"{len(texts)} files name what exists")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
