#!/usr/bin/env python3
"""Runs the benchmarks that scripts/bench has built and prints the table (bench/table.py)."""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys
from collections import defaultdict
from datetime import datetime, timezone
from pathlib import Path

import distances
import growth
import present
from table import LINES

ROWS = sorted({line.row for line in LINES})
GROWTH = "growth"
DISTANCES = "distances"
CALL_BY_VALUE = "limit/virtual call, string by value/limit"
ROOT = Path(__file__).resolve().parent.parent
PAUSE_SECONDS = 0.1  # after each port that is created
LOADS = 41
AGENT_RUNS = 3


def arguments():
    parser = argparse.ArgumentParser(
        prog="scripts/bench",
        description="Measures the library beside what its users would otherwise build on.")
    parser.add_argument("rows", nargs="*", metavar="ROW", help="rows of the table, a to m; or growth, which draws doc/growth.svg; or "
                             "distances, which counts what lies between the library and its rivals")
    parser.add_argument("--filter", metavar="REGEX", default="",
                        help="only benchmarks whose name, ROW/VARIANT/WHO, matches")
    parser.add_argument("--json", metavar="FILE", type=Path, help="where the table is written")
    parser.add_argument("--markdown", action="store_true",
                        help="writes the table into doc/performance.md too")
    parser.add_argument("--repetitions", metavar="N", type=int,
                        help="of which the medians are taken (31; for growth 7)")
    parser.add_argument("--seconds", metavar="S", type=float, default=0.02,
                        help="that a repetition takes at least (0.02)")
    parser.add_argument("--build", type=Path, default=ROOT / "build/bench", help=argparse.SUPPRESS)
    options = parser.parse_args()
    unknown = set(options.rows) - set(ROWS)
    if unknown and options.rows not in ([GROWTH], [DISTANCES]):
        parser.error(f"no such row: {' '.join(sorted(unknown))}")
    if options.markdown and options.rows != [DISTANCES] and (options.rows or options.filter):
        parser.error("--markdown is for a whole table")
    # Memory that others use too is slower in one second than in the next, so there are many short
    # repetitions; to set up a million keys for each would take too long.
    options.repetitions = options.repetitions or (7 if options.rows == [GROWTH] else 31)
    options.json = options.json or options.build / "results.json"
    return options


class Samples:
    """What was measured, by name (ROW/VARIANT/WHO)."""

    def __init__(self, options):
        self.options = options
        self.of = defaultdict(list)

    def wanted(self, name):
        row = name.partition("/")[0]
        return (not self.options.rows or row in self.options.rows) and \
            re.search(self.options.filter, name)

    def add(self, name, value):
        if self.wanted(name):
            self.of[name].append(value)

    def median(self, name):
        return statistics.median(self.of[name]) if name in self.of else None

    def noise(self, name):
        """Half the distance of the quartiles, as a part of the median."""
        values = self.of.get(name, [])
        if len(values) < 4 or not statistics.median(values):
            return None
        low, median, high = statistics.quantiles(values, n=4)
        return (high - low) / 2 / median


def output(*command):
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE,
                          text=True, cwd=ROOT).stdout


def limits_of(row):
    limits = {f"limit/{line.limit}/limit" for line in LINES if line.row == row and line.limit}
    return limits | {CALL_BY_VALUE} if row == "c" else limits


def run_benchmarks(options, row, names):
    """Runs them in a process of their own, in turn and in no order; returns what it reports."""
    report = options.build / f"times-{row}.json"
    every = "|".join(re.sub(r"([.+*?()])", r"\\\1", name) for name in names)
    with report.with_suffix(".log").open("w", encoding="utf-8") as log:
        subprocess.run(
            [options.build / "bin/kest_bench", f"--benchmark_filter=^({every})$",
             "--benchmark_enable_random_interleaving",
             f"--benchmark_repetitions={options.repetitions}",
             f"--benchmark_min_time={options.seconds}",
             f"--benchmark_out={report}", "--benchmark_out_format=json"],
            check=True, stdout=log, stderr=log, cwd=ROOT)
    runs = json.loads(report.read_text(encoding="utf-8"))["benchmarks"]
    return [run for run in runs if run["run_type"] == "iteration"]


def measure(options, samples, group, names):
    """Nanoseconds of an operation, in a process of their own, so that the benchmarks of a group do
    not find the heap as another one has left it."""
    for run in run_benchmarks(options, group, names):
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        manual = run["run_name"].endswith("/manual_time")
        time = run["real_time"] if manual else run["cpu_time"]
        samples.of[run["run_name"].removesuffix("/manual_time")].append(
            time / run.get("operations", 1))


def measurable(options, row):
    listed = output(options.build / "bin/kest_bench", "--benchmark_list_tests").splitlines()
    return [name for name in listed if name.startswith(f"{row}/")]


def compared(names):
    """Groups of what is compared with each other, by a name of the group: measured within seconds, as
    a machine that others use too has another speed a minute later."""
    groups = defaultdict(list)
    for name in names:
        row, variant = name.split("/")[:2]
        together = row == "c"  # what a further observer costs is a difference of two variants
        groups[row if together else re.sub(r"\W", "-", f"{row}-{variant}")].append(name)
    return groups


def measure_times(options, samples):
    for row in ROWS:
        names = [name for name in measurable(options, row)
                 if samples.wanted(name.removesuffix("/manual_time"))]
        for group, members in compared(names).items():
            measure(options, samples, group, members + sorted(limits_of(row)))


def measure_growth(options, samples):
    """A curve's point at a time: a million keys take a gigabyte."""
    points = {name.rpartition("/")[0] for name in measurable(options, GROWTH)}
    for point in sorted(points):
        names = [f"{point}/{store}" for store in growth.STORES]
        measure(options, samples, re.sub(r"\W", "-", point), names)


def derive(samples):
    """What each observer after the eighth costs: the difference to 64, shared out."""
    for name in [name for name in samples.of if name.startswith("c/k=64/")]:
        who = name.rpartition("/")[2]
        few = samples.median(f"c/k=8/{who}")
        if few is not None:
            samples.of[f"c/further/{who}"] = [(samples.median(name) - few) / (64 - 8)]
    if "c/further/ours" in samples.of:
        samples.of["c/further/limit"] = samples.of["limit/virtual call/limit"]
        samples.of["c/further/call with a key by value"] = samples.of[CALL_BY_VALUE]


def measure_heap(options, samples):
    if not options.rows or set(options.rows) & {"b", "k"}:
        for count in json.loads(output(options.build / "bin/bench_heap")):
            samples.add(count["name"], count["value"])


def measure_agent(options, samples):
    if not any(samples.wanted(f"m/{what}/ours") for what in ("processor time", "resident", "load")):
        return
    binaries = options.build / "bin"
    slice_file = ROOT / "examples/full.slice"
    ports = sum(line.startswith("switchPort ")
                for line in slice_file.read_text(encoding="utf-8").splitlines())
    for _ in range(AGENT_RUNS):
        processor, wall, kibibytes = map(float, output(
            binaries / "bench_agent_run", binaries / "kest-slice-agent", "--once",
            slice_file).split())
        pauses = ports * PAUSE_SECONDS
        if wall < pauses:
            sys.exit(f"the agent took {wall} s, less than its pauses")
        samples.add("m/processor time/ours", 100 * processor / pauses)
        samples.add("m/resident/ours", kibibytes / 1024)
    for _ in range(LOADS):
        samples.add("m/load/ours", 1000 * float(output(
            binaries / "bench_load", options.build / "lib/libkest-slice-dma.so")))


def judged(line, samples):
    """One line of the table; none when it was not measured."""
    prefix = f"{line.row}/{line.variant}/"
    ours = samples.median(prefix + "ours")
    if ours is None:
        return None
    peers = {name.removeprefix(prefix): samples.median(name) for name in samples.of
             if name.startswith(prefix) and name.rpartition("/")[2] not in ("ours", "limit")}
    limit = samples.median(f"limit/{line.limit}/limit")
    against = samples.median(prefix + line.against) if line.against else 1
    if against is None:
        return None
    ratio = ours / against
    return {
        "row": line.row, "variant": line.variant, "operation": line.operation, "unit": line.unit,
        "ours": ours, "noise": samples.noise(prefix + "ours"), "peers": peers,
        "limit": {"of": line.limit, "value": limit} if limit is not None else None,
        "against": line.against or None, "ratio": ratio if line.against else None,
        "target": line.target, "met": ratio <= line.target,
    }


def surroundings():
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    return {
        "date": datetime.now(timezone.utc).isoformat(timespec="seconds"),
        "processor": cpu.group(1) if cpu else "unknown",
        "processors": os.cpu_count(),
        "load": os.getloadavg()[0],
    }


def main():
    options = arguments()
    samples = Samples(options)
    if options.rows == [DISTANCES]:
        distances.show(options.build, options.markdown)
        return
    if options.rows == [GROWTH]:
        measure_growth(options, samples)
        growth.draw({name: samples.median(name) for name in samples.of})
        return
    machine = surroundings()
    measure_times(options, samples)
    derive(samples)
    measure_heap(options, samples)
    measure_agent(options, samples)
    results = [result for line in LINES if (result := judged(line, samples))]
    if not results:
        sys.exit("nothing was measured that the table judges")
    present.show(results, machine, options.markdown)
    options.json.write_text(json.dumps({"machine": machine, "rows": results}, indent=1) + "\n",
                            encoding="utf-8")


if __name__ == "__main__":
    main()
