#!/usr/bin/env python3
"""gate.py REPORT: judges llvm-cov's JSON REPORT of the repository in the working directory.

Prints lines and branches by folder. Fails when a folder of the product has fewer than 95 % of its lines
run, or when a branch of the parsers or of the state machine was never taken and is not in
test/coverage/untaken-branches, or when that file names a line that is not there.
"""

import bisect
import collections
import json
import os
import re
import sys

LEAST_LINES = 95.0
# Tests are not instrumented: inline functions that only tests call, and those that only the compiler runs,
# count as not run. Elsewhere they are few.
LEAST_LINES_OF = {"model/detail": 92.0}

# Every branch of these is to be taken: what reads text from outside, and the state machine.
WHOLE = re.compile(
    r"sm/"
    r"|platform/(mox/(Strep|String8|Trace)\.|pelk/|detail/EnumText)"
    r"|model/(DeviceState\.|detail/RecordText)"
    r"|driver/sim/(ChangeLine|FaultFile|StateReader|StateText)"
    r"|text/(Escapes|FileError|JsonDocument|JsonValue)\."
    r"|agent/(slice/(?!RollOut|Comparison)\w+|rules/SliceRules|access/(JsonText|Target)|control/RequestText"
    r"|verbs/Request)\.")

LISTED = "test/coverage/untaken-branches"


def listed_lines():
    """The lines of the product that LISTED excuses, as `file: source`."""
    with open(LISTED, encoding="utf-8") as lines:
        return {line.rstrip("\n") for line in lines if line.strip() and not line.startswith("#")}


def runs_at(segments, place):
    """Whether what stands at `place`, a line and a column, has run."""
    before = bisect.bisect_right([tuple(segment[:2]) for segment in segments], place) - 1
    return before >= 0 and segments[before][2] > 0


def branches(file):
    """How often the condition at each place was true and false, over all instances of a template.

    The compiler decides some conditions itself, as those of `if constexpr`: they have run, but were
    neither, and are left out.
    """
    counts = collections.defaultdict(lambda: [0, 0])
    for line, column, _, _, true, false, *_ in file["branches"]:
        counts[line, column][0] += true
        counts[line, column][1] += false
    return {place: both for place, both in counts.items()
            if any(both) or not runs_at(file["segments"], place)}


def main(report):
    with open(report, encoding="utf-8") as text:
        files = json.load(text)["data"][0]["files"]
    folders = collections.defaultdict(collections.Counter)
    untaken = {}  # by `file: source`, where
    there = set()  # every line of the product, as `file: source`
    for file in files:
        name = os.path.relpath(file["filename"])
        with open(name, encoding="utf-8") as text:
            source = text.read().split("\n")
        there.update(f"{name}: {line.strip()}" for line in source)
        sums = folders[os.path.dirname(name)]
        sums["lines"] += file["summary"]["lines"]["count"]
        sums["run"] += file["summary"]["lines"]["covered"]
        for (line, _), both in branches(file).items():
            sums["branches"] += len(both)
            sums["taken"] += sum(count > 0 for count in both)
            if WHOLE.match(name) and not all(both):
                untaken[f"{name}: {source[line - 1].strip()}"] = f"{name}:{line}"

    failures = []
    print(f"{'folder':26} {'lines':>12} {'':>7}  {'branches':>12}")
    for folder, sums in sorted(folders.items()):
        lines = 100 * sums["run"] / max(1, sums["lines"])
        share = 100 * sums["taken"] / max(1, sums["branches"])
        print(f"{folder:26} {sums['run']:5} of {sums['lines']:4} {lines:5.1f} %"
              f"  {sums['taken']:5} of {sums['branches']:4} {share:5.1f} %")
        least = LEAST_LINES_OF.get(folder, LEAST_LINES)
        if sums["lines"] and lines < least:
            failures.append(f"{folder}: fewer than {least} % of the lines run")
    excused = listed_lines()
    failures += [f"{where}: a branch is never taken: {line.partition(': ')[2]}"
                 for line, where in sorted(untaken.items()) if line not in excused]
    failures += [f"{LISTED}: there is no such line: {line}" for line in sorted(excused - there)]
    print(*failures, sep="\n", end="\n" if failures else "")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
