"""What lies between the library and its rivals, counted instead of timed: instructions, and lines of
memory that a simulated processor had to fetch."""

import os
import re
from concurrent.futures import ThreadPoolExecutor

import callgrind
import present
from table import LINES

ROWS = "abcdefjl"
OPERATIONS = "100000"  # each key at least once, so that what is far away has to be fetched
# As large as those of the processor that the table is from.
CACHES = ["--cache-sim=yes", "--I1=32768,8,64", "--D1=49152,12,64", "--LL=2097152,16,64"]
HEADS = ["", "operation", "beside", "instructions", "lines not in the first cache", "nor in the second"]


def names(line):
    prefix = f"{line.row}/{line.variant}/"
    return prefix + "ours", prefix + line.against


def count(build, name):
    of = callgrind.counted(build, re.sub(r"\W", "-", name) + ".distance", "kest_bench_counted",
                           [name, OPERATIONS], *CACHES)
    return of["Ir"], of["D1mr"] + of["D1mw"], of["DLmr"] + of["DLmw"]


def show(build, markdown):
    # What each further observer costs is the difference of two others.
    lines = [line for line in LINES
             if line.row in ROWS and line.against and line.variant != "further"]
    wanted = {name for line in lines for name in names(line)}
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        of = dict(zip(wanted, pool.map(lambda name: count(build, name), wanted)))
    rows = [HEADS]
    for line in lines:
        ours, theirs = (of[name] for name in names(line))
        rows.append([line.row, line.operation, line.against]
                    + [f"{our:.{digits}f} : {their:.{digits}f}"
                       for our, their, digits in zip(ours, theirs, (0, 1, 1))])
    present.print_rows(rows)
    if markdown:
        present.write_rows("./scripts/bench distances --markdown", rows)
