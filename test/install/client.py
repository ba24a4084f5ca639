#!/usr/bin/env python3
"""client.py INCLUDE_DIR: prints a program that uses whatever the headers below INCLUDE_DIR offer.

It includes every header, refers to every function and variable that one declares and leaves to a
library, and destroys an object of every class, which takes the class's virtual functions. So it
links only if the libraries export all of that.
"""

import json
import pathlib
import subprocess
import sys

# Every declaration of the product has one of these in its qualified name.
NAMES = ("Mox", "Pelk", "Fru", "Bridging", "Hardware", "kestDmaSim")

FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl",
             "CXXConversionDecl"}
CLASSES = {"CXXRecordDecl", "ClassTemplateSpecializationDecl"}
SCOPES = {"NamespaceDecl", "LinkageSpecDecl"} | CLASSES


def declarations(source, include_dir, name):
    """What the source declares below `name`, as the compiler's syntax trees."""
    text = subprocess.run(
        ["clang++", "-std=c++20", "-x", "c++", "-I", ".", "-fsyntax-only",
         "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=" + name, "-"],
        cwd=include_dir, input=source, stdout=subprocess.PIPE, text=True, check=True).stdout
    decoder = json.JSONDecoder()
    start = text.find("{")
    while start >= 0:
        tree, end = decoder.raw_decode(text, start)
        yield tree
        start = text.find("{", end)


class Interface:
    """Linker names that the headers leave to a library, and the classes that anybody can name."""

    def __init__(self):
        self.declared = {}
        self.defined = set()
        self.classes = {}
        self.places = {}  # of classes, by the compiler's number: the name and whether it is public

    def add(self, node, scope=(), public=True):
        kind = node["kind"]
        if kind in FUNCTIONS or kind == "VarDecl":
            self.add_symbol(node)
        elif kind in SCOPES and not node.get("isImplicit"):
            scope += (node["name"],) if "name" in node else ()
            if kind in CLASSES:
                # What is nested may be completed elsewhere: it belongs where it was first declared.
                scope, public = self.places.get(node.get("previousDecl"), (scope, public))
                self.places[node["id"]] = scope, public
            if kind == "CXXRecordDecl" and public and self.is_destroyed(node):
                self.classes["::".join(scope)] = None
            self.add_members(node, scope, public)

    def add_members(self, node, scope, public):
        visible = public and node.get("tagUsed") != "class"
        for member in node.get("inner", ()):
            if member["kind"] == "AccessSpecDecl":
                visible = public and member["access"] == "public"
            else:
                self.add(member, scope, visible)

    def add_symbol(self, node):
        symbol = node.get("mangledName")
        by_hand = not any(node.get(how) for how in ("isImplicit", "explicitlyDeleted",
                                                    "explicitlyDefaulted", "pure"))
        if not symbol or not by_hand:
            return
        is_variable = node["kind"] == "VarDecl"
        body = ("init" in node or node.get("constexpr") if is_variable else
                any(part["kind"] == "CompoundStmt" for part in node.get("inner", ())))
        if body:
            self.defined.add(symbol)
        else:
            self.declared[symbol] = None

    @staticmethod
    def is_destroyed(node):
        """Whether it is a whole class whose objects end in public."""
        public = node.get("tagUsed") != "class"
        for member in node.get("inner", ()):
            if member["kind"] == "AccessSpecDecl":
                public = member["access"] == "public"
            if member["kind"] == "CXXDestructorDecl" and not member.get("isImplicit"):
                return public and not member.get("explicitlyDeleted")
        return node.get("completeDefinition", False)


def main():
    include_dir = sys.argv[1]
    headers = sorted(str(path.relative_to(include_dir))
                     for path in pathlib.Path(include_dir).rglob("*.h"))
    includes = "".join(f'#include "{header}"\n' for header in headers)
    interface = Interface()
    for name in NAMES:
        interface.places.clear()  # the next run of the compiler numbers anew
        for tree in declarations(includes, include_dir, name):
            if tree["kind"] != "CXXRecordDecl":  # those come with their namespaces
                interface.add(tree)
    symbols = [symbol for symbol in interface.declared if symbol not in interface.defined]
    if not symbols or not interface.classes:
        sys.exit("the headers declare nothing")

    print(includes)
    for number, symbol in enumerate(symbols):
        print(f'extern "C" char const symbol{number} asm("{symbol}");')
    print("char const* const used[] = {",
          ", ".join(f"&symbol{number}" for number in range(len(symbols))), "};")
    for number, name in enumerate(interface.classes):
        print(f"using Class{number} = ::{name};")
        print(f"void end(Class{number}& object) {{ object.Class{number}::~Class{number}(); }}")
    print("int main(int count, char**) { return used[count] == nullptr ? 1 : 0; }")


main()
