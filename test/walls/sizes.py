#!/usr/bin/env python3
"""sizes.py ROOT: in the repository at ROOT, no source file has more than 400 lines and no function more
than 60, from brace to brace, tables aside. Each breach is a line
`file:line: what`."""

import re
import sys
from pathlib import Path

FOLDERS = ("platform", "model", "driver", "sm", "registry", "agent", "ctl", "test", "bench", "examples")
MOST_LINES = 400
MOST_LINES_OF_FUNCTION = 60

# What may hold braces and semicolons that are none.
NO_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^ *#[^\n]*',
                     re.DOTALL | re.MULTILINE)
SCOPE = re.compile(r"\b(namespace|class|struct|union|enum|extern)\b[^()]*$")
CODE = re.compile(r"(\)|\]|\b(else|do|try|const|noexcept|override|mutable)|-> [\w:<>&* ]+) *$")


def blank(match):
    """As many newlines as were there."""
    return "\n" * match.group().count("\n")


def kind(head, opened):
    """What a brace opens, by what stands before it since the last brace or semicolon."""
    around = opened[-1]["kind"] if opened else "scope"
    if around == "scope":
        return "scope" if SCOPE.search(head) else "function" if "(" in head else "table"
    return "table" if around == "table" or (head.strip() and not CODE.search(head)) else "code"


def functions(text):
    """The first line of each function, and how many lines it has without its tables."""
    code = NO_CODE.sub(blank, text)
    opened = []  # the blocks in braces that are open
    line, head = 1, ""
    for part in re.findall(r"[{};\n]|[^{};\n]+", code):
        if part == "\n":
            line += 1
            head += " "
        elif part == "{":
            opened.append({"kind": kind(head, opened), "line": line, "tables": 0})
            head = ""
        elif part == "}" and opened:
            block = opened.pop()
            lines = line - block["line"] - block["tables"]
            if block["kind"] == "function":
                yield block["line"], lines + 1
            elif opened and opened[-1]["kind"] != "table":
                opened[-1]["tables"] += lines if block["kind"] == "table" else block["tables"]
            head = ""
        else:
            head = "" if part == ";" else head + part


def breaches(root):
    for folder in FOLDERS:
        for path in sorted([*(root / folder).rglob("*.cpp"), *(root / folder).rglob("*.h")]):
            text = path.read_text(encoding="utf-8")
            name, lines = path.relative_to(root), text.count("\n")
            if lines > MOST_LINES:
                yield f"{name}:{MOST_LINES + 1}: the file has {lines} lines"
            for first, lines in functions(text):
                if lines > MOST_LINES_OF_FUNCTION:
                    yield f"{name}:{first}: the function has {lines} lines"


def main(root):
    found = list(breaches(Path(root)))
    print(*found, sep="\n", end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
