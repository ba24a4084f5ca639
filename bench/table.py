"""The table: which operations are measured, beside what, and how fast they have to be.

A line judges what kest_bench measures as ROW/VARIANT/ours against ROW/VARIANT/<against>. Its target is
the most that ours may be of it.
"""

from dataclasses import dataclass


@dataclass(frozen=True)
class Line:
    row: str
    variant: str
    operation: str
    against: str
    target: float
    unit: str = "ns"


SHAPES = {
    "11@1000": "11-character names, 1,000 keys",
    "32@1000": "32-character names, 1,000 keys",
    "11@100000": "11-character names, 100,000 keys",
    "32@100000": "32-character names, 100,000 keys",
}


def over_shapes(row, operation, targets, against="flat"):
    return [Line(row, variant, f"{operation}: {SHAPES[variant]}", against, target)
            for variant, target in zip(SHAPES, targets)]


LINES = [
    *over_shapes("a", "lookup", (1.0, 0.6, 0.6, 0.6)),
    *[Line("n", f"{length}@{keys}", f"lookup by a new {length}-character name, {keys:,} keys", "flat", 1.5)
      for keys in (1000, 100000) for length in (6, 11)],
    *over_shapes("b", "write that changes nothing", (1.2,) * 4),
    *[Line("c", f"k={k}", f"update told to {k}", "flat", target)
      for k, target in {0: 0.9, 1: 0.9, 8: 1.1, 64: 1.5}.items()],
    Line("c", "k=64", "update told to 64", "signals2", 0.25),
    *over_shapes("d", "insert, tell one", (1.0,) * 4),
    *over_shapes("e", "delete, tell one", (1.2,) * 4),
    Line("f", "11@10000", "delete all of 10,000, tell one: an entry", "unordered", 1.0),
    *[Line("g", name, f"print a record: {name}-character name", "fmt", 0.5) for name in ("11", "32")],
    *[Line("h", name, f"parse a record: {name}-character name", "simdjson", 1.5) for name in ("11", "32")],
    Line("i", "by name", "generic read by name", "variants", 1.0),
    *[Line("k", variant, f"heap of an entry: {SHAPES[variant]}", "unordered", 0.85, "bytes")
      for variant in ("11@100000", "32@100000")],
    Line("r", "read", "request: read a port", "redis", 1.0),
    Line("r", "change", "request: change, driver, status, reply", "redis", 0.6),
    Line("r", "told", "the same told to a watcher", "redis", 0.6),
    Line("r", "pipelined", "the same, 64 in one write: each", "redis", 1.0),
    Line("r", "memory", "resident memory of the server", "redis", 1.0, "KiB"),
]
