#!/usr/bin/env python3
"""Shows that nothing an outsider sends costs more than its size: counts the instructions that each
reader takes for texts of growing size. Fails when a text costs more by the byte the longer it is.
scripts/complexity builds what it needs and runs it."""

import argparse
import os
import queue
import re
import subprocess
import sys
import tempfile
import threading
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import callgrind

BUILD = Path(__file__).resolve().parent.parent.parent / "build/release"
PROGRAM = "bin/complexity"
KIBIBYTE = 1024
SIZES = [1, 4, 16, 64]  # KiB
# What an added byte may cost beside the average of those before it, a size being four times the last.
# n log n: 1.6 at most from 32 pieces on. n times the root of n: 2.3. Squares: 5.
GROWTH = 1.7
# Instructions a byte that are never too many. Below them is what refuses a text before it has read it,
# copies it, or looks through it for a character.
FREE = 4
# Instructions: a text that took more is not followed by a larger one. One that takes so many before it
# could be seen to grow is too dear.
ENOUGH = 100_000_000
FEWEST = 2  # sizes to judge by
# Readers whose cost may grow, up to so many instructions a byte: chosen keys crowd a map's table until it
# becomes a tree.
BOUNDS = {"hash map": 400}
PLANTED = {"planted: linear": False, "planted: n log n": False,
           "planted: quadratic": True, "planted: quadratic moves": True}  # whether they grow


def grows(counts):
    """Whether added bytes cost more than those before them, at any size. What is paid once does not
    count: it is in all sizes."""
    return any(after - before > GROWTH * before / bytes_before * (bytes_after - bytes_before)
               + FREE * (bytes_after - bytes_before)
               for (bytes_before, before), (bytes_after, after) in zip(counts, counts[1:]))


def bound_of(reader):
    return next((bound for name, bound in BOUNDS.items() if reader.startswith(name)), None)


def is_bad(reader, counts):
    bound = bound_of(reader)
    if bound is None:
        return grows(counts)
    size, instructions = counts[-1]
    return instructions > bound * size


def verdict(reader, counts):
    if is_bad(reader, counts):
        return "GROWS"
    return "DEAR" if len(counts) < FEWEST and counts[-1][1] > ENOUGH else "ok"


class Readers:
    """A process in which any reader reads, under callgrind."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.report = Path(self.folder.name) / "report"
        self.dumps = 0
        self.process = subprocess.Popen(
            ["/usr/bin/valgrind", "--tool=callgrind", "--vgdb=no", "--instr-atstart=no",
             "--collect-atstart=no", "--dump-line=no", f"--callgrind-out-file={self.report}", PROGRAM],
            cwd=BUILD, env=callgrind.ENVIRONMENT | {"TMPDIR": self.folder.name}, text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def count(self, number, size):
        """The bytes of a text of the case of that number, and the instructions that it took."""
        print(number, size, file=self.process.stdin, flush=True)
        line = self.process.stdout.readline()
        if not line:
            sys.exit(self.process.stderr.read())
        self.dumps += 1
        dump = Path(f"{self.report}.{self.dumps}")
        total = re.search(r"^totals: (\d+)", dump.read_text(encoding="utf-8"), re.MULTILINE)
        dump.unlink()
        return int(line), int(total.group(1))

    def count_sizes(self, number, reader):
        """The same for growing texts, until one has grown too dear."""
        counts = []
        for size in SIZES:
            counts.append(self.count(number, size * KIBIBYTE))
            if is_bad(reader, counts) or counts[-1][1] > ENOUGH:
                break
        return counts

    def end(self):
        self.process.communicate()
        self.folder.cleanup()


def cases():
    """The names of the readers and of their cases, by number."""
    lines = callgrind.run(BUILD, PROGRAM, "--list").splitlines()
    return {number: tuple(line.split("\t")) for number, line in enumerate(lines)}


def count_all(chosen):
    """The names of each case, and its counts. As many run at once as there are processors."""
    own, processes = threading.local(), []

    def start():
        own.readers = Readers()
        processes.append(own.readers)

    with ThreadPoolExecutor(os.cpu_count(), initializer=start) as pool:
        counts = {number: pool.submit(lambda *one: own.readers.count_sizes(*one), number, names[0])
                  for number, names in chosen.items()}
        for number, names in chosen.items():
            yield names, counts[number].result()
    for readers in processes:
        readers.end()


def row(reader, case, counts):
    costs = [f"{instructions / size:9.1f}" for size, instructions in counts]
    costs += ["        -"] * (len(SIZES) - len(costs))
    return f"{reader:28} {case:40} {''.join(costs)}  {verdict(reader, counts)}"


def check_planted(growing):
    """The check sees what is known to grow, and nothing else."""
    found = {reader for reader, _ in growing}
    for reader, grows_indeed in PLANTED.items():
        if (reader in found) != grows_indeed:
            sys.exit(f"{reader}: should {'' if grows_indeed else 'not '}be found to grow")


def main():
    parser = argparse.ArgumentParser(prog="scripts/complexity", description=__doc__)
    parser.add_argument("reader", nargs="*", help="those whose names begin so; all by default")
    parser.add_argument("--quick", action="store_true", help="leave the largest texts out")
    options = parser.parse_args()
    if options.quick:
        SIZES.pop()
    chosen = {number: names for number, names in cases().items()
              if names[0] in PLANTED or names[0].startswith(tuple(options.reader or [""]))}
    print(f"{'instructions a byte':69} " + "".join(f"{size:5} KiB" for size in SIZES))
    bad = []
    for names, counts in count_all(chosen):
        print(row(*names, counts), flush=True)
        if verdict(names[0], counts) != "ok":
            bad.append(names)
    check_planted(bad)
    bad = [names for names in bad if names[0] not in PLANTED]
    if bad:
        sys.exit("cost more by the byte the longer they are, or too much:\n" +
                 "\n".join(f"  {reader}: {case}" for reader, case in bad))
    print(f"{len(chosen)} kinds of text: none costs more by the byte the longer it is")


if __name__ == "__main__":
    main()
