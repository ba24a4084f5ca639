#!/usr/bin/env python3
"""Counts the instructions of the library's operations, one by one, and compares them
with those in bench/instructions.txt. scripts/instructions builds what it needs and runs it."""

import argparse
import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import callgrind

ROOT = Path(__file__).resolve().parent.parent
KEPT = ROOT / "bench/instructions.txt"
BUILD = ROOT / "build/release"
REPORTS = BUILD / "instructions"
ALLOWANCE = 0.03
MADE_WITH = ("g++-12", "libc6", "valgrind")  # whose versions change the figures
UPDATE = "scripts/instructions --update"


def operations():
    """All but those of 100,000 keys, which take about as many instructions as with 1,000; and none of
    what is no operation but a figure."""
    listed = callgrind.run(BUILD, "bin/kest_instructions", "list").splitlines()
    return [name.removesuffix("/ours") for name in listed if "@100000" not in name]


def count(operation):
    report = REPORTS / re.sub(r"\W", "-", operation)
    return callgrind.counted(BUILD, report.relative_to(BUILD), "kest_instructions",
                             ["count", "1000", f"{operation}/ours"])["Ir"]


def count_all():
    REPORTS.mkdir(exist_ok=True)
    names = operations()
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return dict(sorted(zip(names, pool.map(count, names))))


def versions():
    return subprocess.run(["dpkg-query", "-W", "-f=${Package} ${Version}, ", *MADE_WITH], check=True,
                          stdout=subprocess.PIPE, text=True).stdout.rstrip(", ")


def kept():
    """What the file says: the versions that it was made with, and the figures."""
    lines = KEPT.read_text(encoding="utf-8").splitlines() if KEPT.exists() else []
    made_with = next((line.removeprefix("# with ") for line in lines if line.startswith("# with ")), "")
    pairs = [line.split(maxsplit=1) for line in lines if line and not line.startswith("#")]
    return made_with, {name: float(figure) for figure, name in pairs}


def keep(figures):
    lines = ["# Instructions of one operation, named as in the table of doc/performance.md: compared by",
             "# scripts/instructions, written by scripts/instructions --update", f"# with {versions()}"]
    lines += [f"{figure:9.1f}  {name}" for name, figure in figures.items()]
    KEPT.write_text("\n".join(lines) + "\n", encoding="utf-8")


def differences(before, now):
    """A line for each operation that is not as it was, to within the allowance."""
    for name in sorted(before.keys() | now.keys()):
        if name not in now:
            yield f"{name}: is not counted any more"
        elif name not in before:
            yield f"{name}: is new, {now[name]:.1f} instructions"
        elif abs(now[name] - before[name]) > ALLOWANCE * before[name]:
            change = now[name] / before[name] - 1
            yield (f"{name}: {'GREW' if change > 0 else 'shrank'} by {abs(change):.1%}, "
                   f"from {before[name]:.1f} to {now[name]:.1f} instructions")


def main():
    parser = argparse.ArgumentParser(prog="scripts/instructions", description=__doc__)
    parser.add_argument("--update", action="store_true", help="writes them instead")
    options = parser.parse_args()
    made_with, before = kept()
    now = count_all()
    changes = list(differences(before, now))
    for change in changes:
        print(change)
    if options.update:
        keep(now)
        return
    if not changes:
        print(f"{len(now)} operations take the instructions that they took, to within {ALLOWANCE:.0%}")
        return
    if made_with != versions():
        print(f"They were counted with {made_with}; this is {versions()}.")
    sys.exit(f"Where they are spent: callgrind_annotate {REPORTS.relative_to(ROOT)}/OPERATION\n"
             f"What is meant to be so, gains too, is kept by: {UPDATE}")


if __name__ == "__main__":
    main()
