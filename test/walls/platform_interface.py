#!/usr/bin/env python3
"""platform_interface.py LIST ROOT: the floors of the repository at ROOT use nothing of platform/ but
what is on LIST, and LIST holds nothing that nobody uses. Each defect is a line.

LIST has a name a line, and comments from `#` on. A name after `+` is an addition and needs its reason.
A class stands for its constructors, destructor, operators and conversions too; every other member,
constant and enumerator has a line of its own.

The compiler finds the uses: clang++ parses the sources of each unit as one and prints what their names
refer to, in instantiated templates too. It prints only what has a given part in its full name, so the
namespaces get one as a prefix. A template that nothing instantiates shows what does not depend on its
parameters: test/walls/instantiations.h instantiates those that only other folders use.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

MARK = "Wall_"
NAMESPACES = ("Mox", "Pelk", "Fru", "Bridging", "Hardware")
# Folders whose sources are parsed together.
UNITS = (("model", "sm", "registry"), ("driver",))

INDENT = re.compile(r"[ |`-]*")
QUOTED = re.compile(r"'(?:[^'\\]|\\.)*'")
NAME = re.compile(r"\w+")
ADDRESS = re.compile(r"0x[0-9a-f]+")
PLACE = re.compile(r"(line|[^\s<>,:]*[./][^\s<>,:]*):(\d+)")
DECLARATION = re.compile(
    r"(?P<kind>\w+Decl) (?P<address>0x[0-9a-f]+)"
    r"(?: parent (?P<parent>0x[0-9a-f]+))?(?: prev (?P<previous>0x[0-9a-f]+))?"
    r" <[^<>]*(?:<[^<>]*>[^<>]*)*>(?: (?:<invalid sloc>|(?:<[a-z ]+>|[^\s:]+)[:\d]+))?"
    r"(?: (?:in \w+|implicit|used|referenced|constexpr|inline|class|struct|union))*"
    r"(?: (?P<name>[^' ]+|operator [^']+?))?(?: '.*| definition.*|$)")
REFERENCE = re.compile(r"(DeclRefExpr|MemberExpr|CXXNewExpr|CXXDeleteExpr|UsingShadowDecl|"
                       r"TemplateArgument decl|Overrides:)")
SCOPES = ("NamespaceDecl", "CXXRecordDecl", "EnumDecl", "ClassTemplateSpecializationDecl",
          "ClassTemplatePartialSpecializationDecl")
OF_CLASS = re.compile(r"operator\b|~")


def names_in(type_text):
    """The marked full names in a printed type, its template arguments included."""
    for start in re.finditer(MARK, type_text):
        parts, at = [], start.start()
        while name := NAME.match(type_text, at):
            parts.append(name.group())
            at = name.end()
            if type_text.startswith("<", at):
                at = behind_arguments(type_text, at)
            if not type_text.startswith("::", at):
                break
            at += len("::")
        yield "::".join(parts)


def behind_arguments(text, at):
    depth = 0
    while at < len(text):
        depth += {"<": 1, ">": -1}.get(text[at], 0)
        at += 1
        if depth == 0:
            break
    return at


class Dump:
    """Reads what clang++ prints, line by line: a tree, in which a place is given as far as it differs
    from the one before."""

    def __init__(self):
        self.file, self.line = "", 0
        self.open = []        # declarations around the line: depth, kind, name, file
        self.names = {}       # full names of declarations, by address
        self.of_platform = set()
        self.namespaces = {""}
        self.addresses = {}   # what the floors refer to by address: where first
        self.uses = {}        # by full name: where first

    def read(self, lines):
        for line in lines:
            self.take(line.rstrip("\n"))
        for address, place in self.addresses.items():
            if address in self.names:
                self.uses.setdefault(self.names[address], place)

    def listed(self):
        """What the floors use of the platform, under the names that the list has: where first."""
        found = {}
        for name, place in self.uses.items():
            if name in self.of_platform:
                found.setdefault(self.listed_as(name), place)
        return found

    def listed_as(self, name):
        """A class for its constructors, destructor, operators and conversions."""
        scope, _, last = name.rpartition("::")
        is_member = scope not in self.namespaces
        if is_member and (OF_CLASS.match(last) or scope.endswith(f"::{last}")):
            name = scope
        return name.replace(MARK, "")

    def take(self, line):
        depth = INDENT.match(line).end()
        node = line[depth:].partition(" Text=")[0]  # not what comments say
        bare = QUOTED.sub("", node)
        for file, number in PLACE.findall(bare):
            self.file = self.file if file == "line" else os.path.normpath(file)
            self.line = int(number)
        while self.open and self.open[-1][0] >= depth:
            self.open.pop()
        if "Decl 0x" in node and (declaration := DECLARATION.match(node)):
            self.declare(depth, declaration)
        if self.open and not self.open[-1][3].startswith("platform/"):
            self.use(node, bare)

    def declare(self, depth, found):
        is_friend = any(kind == "FriendDecl" for _, kind, _, _ in self.open[-2:])
        scopes = [name for _, kind, name, _ in self.open if kind in SCOPES]
        scope = scopes[-1] if scopes else ""
        if not is_friend:
            scope = self.names.get(found["parent"], scope)
        name = f"{scope}::{found['name']}" if scope else found["name"] or ""
        name = self.names.get(found["previous"], name)
        self.names[found["address"]] = name
        self.open.append((depth, found["kind"], name, self.file))
        if found["kind"] == "NamespaceDecl":
            self.namespaces.add(name)
        elif self.file.startswith("platform/"):
            self.of_platform.add(name)

    def use(self, node, bare):
        place = f"{self.open[-1][3]}:{self.line}"
        for text in QUOTED.findall(node) if MARK in node else ():
            for name in names_in(text):
                self.uses.setdefault(name, place)
        if reference := REFERENCE.match(node):
            own = 0 if reference.group() in ("Overrides:", "TemplateArgument decl") else 1
            for address in ADDRESS.findall(bare)[own:]:
                self.addresses.setdefault(address, place)


def dump_of(root, unit):
    """Starts clang++ on the unit's folders; its output is read while it comes."""
    files = sorted(file for folder in unit for file in (root / folder).rglob("*")
                   if file.suffix in (".h", ".cpp"))
    if not files:
        return None
    extra = root / "test/walls/instantiations.h"
    if extra.exists() and unit == UNITS[0]:
        files.append(extra)
    command = ["clang++", "-x", "c++", "-std=c++20", "-w", "-fsyntax-only", "-I.",
               "-Xclang", "-ast-dump", "-Xclang", f"-ast-dump-filter={MARK}"]
    command += [f"-D{name}={MARK}{name}" for name in NAMESPACES] + ["-"]
    process = subprocess.Popen(command, cwd=root, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               encoding="utf-8", errors="replace")
    process.stdin.write("".join(f'#include "{file.relative_to(root)}"\n' for file in files))
    process.stdin.close()
    return process


def uses_in(root):
    """Full names of the platform's declarations that the floors use: where first."""
    uses = {}
    for process in [one for one in [dump_of(root, unit) for unit in UNITS] if one]:
        dump = Dump()
        dump.read(process.stdout)
        if process.wait() != 0:
            sys.exit("clang++ cannot parse the sources")
        for name, place in dump.listed().items():
            uses.setdefault(name, place)
    return uses


def listed_in(path):
    """Yields number, name and what is wrong with the line, if anything."""
    names = set()
    for number, line in enumerate(path.read_text().splitlines(), 1):
        words = line.partition("#")[0].split()
        if not words:
            continue
        added = words[0] == "+"
        name, reason = words[1 if added else 0], words[2 if added else 1:]
        defect = None
        if added and not reason:
            defect = "is added without a reason"
        if reason and not added:
            defect = "has a reason, but is no addition"
        if name in names:
            defect = "is listed twice"
        names.add(name)
        yield number, name, defect


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: platform_interface.py LIST ROOT")
    path, root = Path(sys.argv[1]), Path(sys.argv[2]).resolve()
    uses = uses_in(root)
    if not uses:
        sys.exit(f"nothing uses the platform in {root}")
    within = {name.rpartition("::")[0] for name in uses}
    defects, listed = [], set()
    for number, name, defect in listed_in(path):
        listed.add(name)
        if name not in uses and name not in within:
            defect = "is used nowhere"
        if defect:
            defects.append(f"{path.name}:{number}: {name} {defect}")
    defects += [f"{place}: {name} is not promised"
                for name, place in sorted(uses.items()) if name not in listed]
    print(*defects, sep="\n", end="\n" if defects else "")
    if defects:
        sys.exit(f"{len(defects)} defects")


main()
