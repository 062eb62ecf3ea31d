"""The recipes of docs/simulator.md: what is to be run, and what it should print."""

import pathlib
import re


class Recipe:
    """A section of the page with one block of commands and the block of what they print."""

    def __init__(self, number, title, commands, printed):
        self.number = number
        self.title = title
        self.commands = commands
        self.printed = printed


def _blocks(text):
    """Language and content of the fenced blocks, in order."""
    return re.findall(r"^```(\w*)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


class Page:
    def __init__(self, path):
        text = pathlib.Path(path).read_text(encoding="utf-8")
        section = re.search(r"^## Ten recipes\n(.*?)(?=^## )", text, re.MULTILINE | re.DOTALL)
        if not section:
            raise AssertionError(f"{path} has no section 'Ten recipes'")
        before, *parts = re.split(r"^### ", section.group(1), flags=re.MULTILINE)
        self.commands_everywhere = sum(language == "sh" for language, _ in _blocks(text))
        self.preparation = [content for language, content in _blocks(before) if language == "sh"]
        self.recipes = [self._recipe(path, part) for part in parts]

    @staticmethod
    def _recipe(path, part):
        heading = part.splitlines()[0]
        match = re.fullmatch(r"(\d+)\. (.+)", heading)
        if not match:
            raise AssertionError(f"{path}: '{heading}' is no heading of a recipe; accepted: ### NUMBER. TITLE")
        blocks = _blocks(part)
        if [language for language, _ in blocks] != ["sh", "text"]:
            raise AssertionError(f"{path}: recipe '{heading}' has the blocks {[each for each, _ in blocks]}; "
                                 "accepted: one of commands (sh), then one of what they print (text)")
        return Recipe(int(match.group(1)), match.group(2), blocks[0][1], blocks[1][1])


def pattern(printed):
    """What is printed as a regular expression: `...` on a line of its own stands for any lines or none, within a line
    for any characters or none."""
    parts = []
    for line in printed.splitlines():
        if line == "...":
            parts.append(r"(?:.*\n)*?")
        else:
            parts.append(r"[^\n]*".join(map(re.escape, line.split("..."))) + r"\n")
    return re.compile("".join(parts))
