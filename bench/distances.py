"""What lies between the library and a rival, counted instead of timed: instructions, and lines of memory
that were in none of a simulated processor's caches. The same in every run."""

import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from itertools import zip_longest

import present
from table import LINES

ROWS = "abcdefjl"
OPERATIONS = 100_000  # of a row: each key at least once, so that what is far away has to be fetched
# Sizes of the processor's that the table was made on.
CACHES = ["--cache-sim=yes", "--I1=32768,8,64", "--D1=49152,12,64", "--LL=2097152,16,64"]
HEADS = ["", "operation", "who", "instructions", "lines from behind the first cache", "from behind the second"]


def counted(build, name):
    """Instructions, first-level misses and second-level misses of an operation."""
    with tempfile.NamedTemporaryFile("r", encoding="utf-8") as report:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--vgdb=no", "--instr-atstart=no", "--collect-atstart=no",
             *CACHES, f"--callgrind-out-file={report.name}", build / "bin/kest_bench_counted", name,
             str(OPERATIONS)],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"{name}: {run.stderr}")
        text = report.read()
    events = re.search(r"^events: (.*)$", text, re.MULTILINE).group(1).split()
    sums = re.search(r"^totals: (.*)$", text, re.MULTILINE).group(1).split()
    of = dict(zip_longest(events, map(int, sums), fillvalue=0))  # zeros at the end are left out
    done = int(run.stdout)
    return (of["Ir"] / done, (of["D1mr"] + of["D1mw"]) / done, (of["DLmr"] + of["DLmw"]) / done)


def name_of(line, who):
    return f"limit/{line.limit}/limit" if who == "limit" else f"{line.row}/{line.variant}/{who}"


def compared():
    """The lines of the table whose two sides can both be counted."""
    return [line for line in LINES
            if line.row in ROWS and line.against and line.variant != "further"]


def rows(build):
    names = {name_of(line, who) for line in compared() for who in ("ours", line.against)}
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        of = dict(zip(names, pool.map(lambda name: counted(build, name), names)))
    for line in compared():
        for who in ("ours", line.against):
            instructions, near, far = of[name_of(line, who)]
            first = who == "ours"
            yield [line.row if first else "", line.operation if first else "", who,
                   f"{instructions:.0f}", f"{near:.1f}", f"{far:.1f}"]


def show(build, markdown):
    table = [HEADS, *rows(build)]
    present.print_rows(table)
    if markdown:
        present.write_rows("./scripts/bench distances --markdown", table)
