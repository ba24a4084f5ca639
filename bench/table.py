"""The table: which operations are measured, beside what, and how fast they have to be.

A line judges what kest_bench (or bench_heap) measures as ROW/VARIANT/ours against
ROW/VARIANT/<against>. Its target is the most that ours may be of it.
"""

from dataclasses import dataclass


@dataclass(frozen=True)
class Line:
    row: str
    variant: str
    operation: str
    against: str  # the rival that the target is about, or the limit
    target: float
    limit: str = ""  # what the operation cannot do without; measured as limit/<limit>/limit
    unit: str = "ns"


SHAPES = {
    "11@1000": "11-character names, 1,000 keys",
    "32@1000": "32-character names, 1,000 keys",
    "11@100000": "11-character names, 100,000 keys",
    "32@100000": "32-character names, 100,000 keys",
}


def over_shapes(row, operation, against, targets, limit):
    return [Line(row, variant, f"{operation}: {SHAPES[variant]}", against, target,
                 limit.format(keys=variant.partition("@")[2]))
            for variant, target in targets.items()]


def everywhere(target):
    return dict.fromkeys(SHAPES, target)


LINES = [
    *over_shapes("a", "lookup", "flat",
                 {"11@1000": 1.0, "32@1000": 0.6, "11@100000": 0.6, "32@100000": 0.6},
                 "hash and probe@{keys}"),
    *over_shapes("b", "write that changes nothing", "flat", everywhere(1.2),
                 "hash and probe@{keys}"),
    Line("b", "allocations", "the same: allocations", "", 0, unit="calls"),
    *[Line("c", f"k={k}", f"update told to {k}", "flat", target, "hash and probe@1000")
      for k, target in {0: 0.9, 1: 0.9, 8: 1.1, 64: 1.1}.items()],
    Line("c", "k=64", "update told to 64", "signals2", 0.25, "hash and probe@1000"),
    Line("c", "further", "each further observer", "limit", 1.5, "virtual call"),
    *over_shapes("d", "insert, tell one", "flat", everywhere(1.0), "allocation"),
    *over_shapes("e", "delete, tell one", "node", everywhere(1.0), "allocation"),
    Line("f", "11@10000", "delete all of 10,000, tell one: an entry", "unordered", 1.0,
         "allocation"),
    *[Line("g", name, f"print a record: {name}-character name", "fmt", 0.5, "byte scan")
      for name in ("11", "32")],
    *[Line("h", name, f"parse a record: {name}-character name", against, target, "byte scan")
      for name in ("11", "32") for against, target in (("RapidJSON", 0.4), ("simdjson", 1.5))],
    Line("i", "by id", "generic read by id", "protobuf", 0.35, "virtual call"),
    Line("i", "by name", "generic read by name", "variants", 1.0, "virtual call"),
    *[Line("j", variant, f"configuration to driver to status: {SHAPES[variant]}", "flat", 0.9)
      for variant in ("11@1000", "32@1000")],
    *[Line("k", variant, f"heap of an entry: {SHAPES[variant]}", "unordered", 0.85, unit="bytes")
      for variant in ("11@100000", "32@100000")],
    Line("l", "1000 devices", "poll of 1,000 devices: a device", "loop", 2.0),
    Line("m", "processor time", "agent, 36 ports: processor time of its pauses", "", 2, unit="%"),
    Line("m", "resident", "the same: resident memory", "", 8, unit="MiB"),
    Line("m", "load", "the same: loading the library", "", 2, unit="ms"),
]
