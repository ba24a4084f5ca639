"""Has callgrind count what an operation takes; see Counted.cpp."""

import re
import subprocess
import sys
from itertools import zip_longest

# Nothing of the surroundings: they lie on the stack, and their length would shift it. The C library
# takes the variants of its functions that every processor has.
ENVIRONMENT = {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX,-AVX2,-BMI1,-BMI2,-ERMS,-FSRM,-LZCNT,-MOVBE,"
                                 "-POPCNT,-SSE4_1,-SSE4_2,-SSSE3,-XSAVE"}


def run(build, *command):
    """The program is named from the build folder, whose own name does not count so."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          cwd=build, env=ENVIRONMENT, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{done.stderr}")
    return done.stdout


def counted(build, report, program, operation, *options):
    """Callgrind's events of one operation, by their names, such as Ir for instructions. `report`, below
    the build folder, is what callgrind writes."""
    done = int(run(build, "/usr/bin/valgrind", "--tool=callgrind", "--vgdb=no", "--instr-atstart=no",
                   "--collect-atstart=no", *options, f"--callgrind-out-file={report}",
                   f"bin/{program}", *operation))
    text = (build / report).read_text(encoding="utf-8")
    events, totals = (re.search(f"^{line}: (.*)$", text, re.MULTILINE).group(1).split()
                      for line in ("events", "totals"))
    of = zip_longest(events, map(int, totals), fillvalue=0)  # zeros at the end are left out
    return {event: total / done for event, total in of}
