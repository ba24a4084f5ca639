#!/usr/bin/env python3
"""gate.py REPORT: judges gcovr's JSON REPORT of the repository in the working directory.

Prints lines and branches by folder. Fails when a folder of the product has fewer than 95 % of its lines
run, or when a branch of the parsers or of the state machine was never taken and is not in
test/coverage/compiler-branches, or when that file names a line without such a branch.
"""

import collections
import json
import re
import sys

LEAST_LINES = 95.0

# Every branch of these is to be taken: what reads text from outside, and the state machine.
WHOLE = re.compile(
    r"sm/"
    r"|platform/(mox/(Strep|String8|Trace)\.|pelk/|detail/EnumText)"
    r"|model/(DeviceState\.|detail/RecordText)"
    r"|driver/sim/(ChangeLine|FaultFile|StateReader|StateText)"
    r"|text/(Escapes|FileError|JsonDocument|JsonValue)\."
    r"|agent/(slice/(?!RollOut|Comparison)\w+|rules/SliceRules|access/(JsonText|Target)|control/RequestText"
    r"|verbs/Request)\.")

LISTED = "test/coverage/compiler-branches"


def listed_lines():
    """The lines of the product that LISTED excuses, as `file: source`."""
    with open(LISTED, encoding="utf-8") as lines:
        return {line.rstrip("\n") for line in lines if line.strip() and not line.startswith("#")}


def main(report):
    with open(report, encoding="utf-8") as text:
        files = json.load(text)["files"]
    folders = collections.defaultdict(collections.Counter)
    untaken = {}  # by `file: source`, where
    for file in files:
        name = file["file"]
        with open(name, encoding="utf-8") as text:
            source = text.read().split("\n")
        sums = folders[name.rpartition("/")[0]]
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            sums["lines"] += 1
            sums["run"] += line["count"] > 0
            sums["branches"] += len(line["branches"])
            sums["taken"] += sum(branch["count"] > 0 for branch in line["branches"])
            if WHOLE.match(name) and any(branch["count"] == 0 for branch in line["branches"]):
                number = line["line_number"]
                untaken[f"{name}: {source[number - 1].strip()}"] = f"{name}:{number}"

    failures = []
    print(f"{'folder':26} {'lines':>12} {'':>7}  {'branches':>12}")
    for folder, sums in sorted(folders.items()):
        lines = 100 * sums["run"] / sums["lines"]
        branches = 100 * sums["taken"] / max(1, sums["branches"])
        print(f"{folder:26} {sums['run']:5} of {sums['lines']:4} {lines:5.1f} %"
              f"  {sums['taken']:5} of {sums['branches']:4} {branches:5.1f} %")
        if lines < LEAST_LINES:
            failures.append(f"{folder}: fewer than {LEAST_LINES} % of the lines run")
    excused = listed_lines()
    failures += [f"{where}: a branch is never taken: {line.partition(': ')[2]}"
                 for line, where in sorted(untaken.items()) if line not in excused]
    failures += [f"{LISTED}: all branches are taken of: {line}" for line in sorted(excused - set(untaken))]
    print(*failures, sep="\n", end="\n" if failures else "")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
