#!/usr/bin/env python3
"""Runs the benchmarks that scripts/bench has built and prints the table (bench/table.py)."""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from contextlib import contextmanager
from datetime import datetime, timezone
from pathlib import Path

from table import LINES

ROWS = sorted({line.row for line in LINES})
ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/bench"
BENCH = BUILD / "bin/kest_bench"
RESULTS = BUILD / "results.json"
DOCUMENT = ROOT / "doc/performance.md"
TABLE = re.compile(r"(<!-- table: [^\n]* -->\n).*(<!-- end of table -->\n)", re.DOTALL)
REPETITIONS = 31  # of which the median is taken
SECONDS = 0.02  # that each takes
HEADS = ["", "operation", "ours", "+-", "beside", "ratio", "target", ""]


def arguments():
    parser = argparse.ArgumentParser(
        prog="scripts/bench",
        description="Measures the library beside what its users would otherwise build on. The table is "
                    f"written to {RESULTS.relative_to(ROOT)} too.")
    parser.add_argument("rows", nargs="*", metavar="ROW", help=f"of the table: {' '.join(ROWS)}")
    parser.add_argument("--markdown", action="store_true",
                        help="writes the whole table into doc/performance.md too")
    parser.add_argument("--agent", metavar="FILE", type=Path, default=BUILD / "bin/kest-slice-agent",
                        help="the agent that requests are sent to, to compare it with another one")
    options = parser.parse_args()
    if unknown := set(options.rows) - set(ROWS):
        parser.error(f"no such row: {' '.join(sorted(unknown))}")
    if options.markdown and options.rows:
        parser.error("--markdown is for the whole table")
    return options


def output(*command, **settings):
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE, text=True,
                          cwd=ROOT, **settings).stdout


def measure(names, environment=None):
    """The results of benchmarks, by name, in a process of their own: others would leave another heap.
    They are measured together, as a machine that others use too has another speed a minute later."""
    lines = output(BENCH, "time", SECONDS, REPETITIONS, *names,
                   env=os.environ | (environment or {})).splitlines()
    return {name: [float(result) for result in results]
            for name, *results in (line.split("\t") for line in lines)}


@contextmanager
def server(command, log, **settings):
    with log.open("w", encoding="utf-8") as file:
        process = subprocess.Popen([str(part) for part in command], stdout=file, stderr=file, **settings)
    try:
        yield process
    finally:
        process.terminate()
        process.wait()


def wait_until(condition, what):
    for _ in range(300):
        if condition():
            return
        time.sleep(0.1)
    sys.exit(f"{what} is not ready after half a minute")


def most_resident(process):
    """KiB of memory that the process has had at once."""
    status = Path(f"/proc/{process.pid}/status").read_text(encoding="utf-8")
    return float(re.search(r"VmHWM:\s*(\d+)", status).group(1))


def measure_requests(agent_program, names):
    """Both servers keep nothing on disk but the agent's log."""
    with tempfile.TemporaryDirectory() as folder:
        sockets = {"KEST_BENCH_AGENT": f"{folder}/agent", "KEST_BENCH_REDIS": f"{folder}/redis"}
        agent_log = Path(folder, "agent.log")
        agent_command = [agent_program, "--control", sockets["KEST_BENCH_AGENT"],
                         ROOT / "examples/full.slice"]
        redis_command = ["/usr/bin/redis-server", "--port", "0", "--save", "", "--appendonly", "no",
                         "--unixsocket", sockets["KEST_BENCH_REDIS"]]
        with server(agent_command, agent_log) as agent, \
                server(redis_command, Path(folder, "redis.log"), cwd=folder) as redis:
            wait_until(lambda: "announced" in agent_log.read_text(encoding="utf-8"), "the agent")
            wait_until(Path(sockets["KEST_BENCH_REDIS"]).exists, "redis-server")
            results = measure(names, sockets)
            return results | {"r/memory/ours": [most_resident(agent)],
                              "r/memory/redis": [most_resident(redis)]}


def measure_all(options):
    groups = defaultdict(list)
    for name in output(BENCH, "list").splitlines():
        row, variant = name.split("/")[:2]
        if row in (options.rows or ROWS):
            groups["r" if row == "r" else f"{row}/{variant}"].append(name)
    results = {}
    for group, names in groups.items():
        results |= measure_requests(options.agent, names) if group == "r" else measure(names)
    return results


def noise(values):
    """Half the distance of the quartiles, as a part of the median."""
    if len(values) < 4:
        return None
    low, median, high = statistics.quantiles(values, n=4)
    return (high - low) / 2 / median


def judged(line, results):
    """One line of the table; none when it was not measured."""
    prefix = f"{line.row}/{line.variant}/"
    of = {name.removeprefix(prefix): values for name, values in results.items() if name.startswith(prefix)}
    if not of:
        return None
    medians = {who: statistics.median(values) for who, values in of.items()}
    ours = medians.pop("ours")
    ratio = ours / medians[line.against]
    return {"row": line.row, "operation": line.operation, "unit": line.unit, "ours": ours,
            "noise": noise(of["ours"]), "peers": medians, "against": line.against, "ratio": ratio,
            "target": line.target, "met": ratio <= line.target}


def number(value):
    return f"{value:.0f}" if value >= 1000 else f"{value:.3g}"


def cells(result):
    return [result["row"], result["operation"], f"{number(result['ours'])} {result['unit']}",
            f"{result['noise']:.0%}" if result["noise"] is not None else "",
            ", ".join(f"{name} {number(value)}" for name, value in sorted(result["peers"].items())),
            f"{result['ratio']:.2f} x {result['against']}", f"{result['target']:g}",
            "met" if result["met"] else "NOT MET"]


def show(rows):
    widths = [max(map(len, column)) for column in zip(*rows)]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def write_document(rows, summary):
    heads, *others = rows
    lines = [f"| {' | '.join(row)} |" for row in [heads, ["---"] * len(heads), *others]]
    table = "\n".join(["", *lines, "", summary, "", ""])
    text, found = TABLE.subn(lambda marks: marks.group(1) + table + marks.group(2),
                             DOCUMENT.read_text(encoding="utf-8"))
    if not found:
        sys.exit(f"{DOCUMENT} has no place for the table")
    DOCUMENT.write_text(text, encoding="utf-8")


def main():
    options = arguments()
    cpu = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text(encoding="utf-8"))
    load = os.getloadavg()[0]
    measured = measure_all(options)
    results = [result for line in LINES if (result := judged(line, measured))]
    summary = (f"{sum(result['met'] for result in results)} of {len(results)} targets met; "
               f"{cpu.group(1) if cpu else 'unknown processor'}, load {load:.1f} on {os.cpu_count()} "
               f"processors at the start, {datetime.now(timezone.utc):%Y-%m-%d}.")
    rows = [HEADS, *map(cells, results)]
    show(rows)
    print(f"\n{summary}")
    RESULTS.write_text(json.dumps({"summary": summary, "rows": results}, indent=1) + "\n", encoding="utf-8")
    if options.markdown:
        write_document(rows, summary)


if __name__ == "__main__":
    main()
