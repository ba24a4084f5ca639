"""Tables as text, and as Markdown in doc/performance.md."""

from pathlib import Path

DOCUMENT = Path(__file__).resolve().parent.parent / "doc/performance.md"
END = "<!-- end of table -->\n"
HEADS = ["", "operation", "ours", "+-", "peers", "limit", "ratio", "target", ""]


def number(value):
    return f"{value:.0f}" if value >= 1000 else f"{value:.3g}"


def cells(result):
    against = result["against"]
    peers = sorted(result["peers"].items(), key=lambda peer: (peer[0] != against, peer[1]))
    limit = result["limit"]
    return [
        result["row"], result["operation"],
        f"{number(result['ours'])} {result['unit']}",
        f"{result['noise']:.0%}" if result["noise"] is not None else "",
        ", ".join(f"{name} {number(value)}" for name, value in peers),
        f"{limit['of'].partition('@')[0]} {number(limit['value'])}" if limit else "",
        f"{result['ratio']:.2f} x {against}" if against else "",
        f"{result['target']:g}" if against else f"{result['target']:g} {result['unit']}",
        "met" if result["met"] else "NOT MET",
    ]


def summary(results, machine):
    met = sum(result["met"] for result in results)
    return (f"{met} of {len(results)} targets met; {machine['processor']}, "
            f"load {machine['load']:.1f} on {machine['processors']} processors at the start")


def print_rows(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def write_rows(command, rows, *remarks):
    """Replaces what stands between the mark of `command`, which makes it, and the next end."""
    mark = f"<!-- table: {command} -->\n"
    text = DOCUMENT.read_text(encoding="utf-8")
    before, found, rest = text.partition(mark)
    _, found_end, after = rest.partition(END)
    if not found or not found_end:
        raise ValueError(f"{DOCUMENT} has no place for the table of {command}")
    heads, *others = rows
    table = "".join(f"| {' | '.join(row)} |\n" for row in [heads, ["---"] * len(heads), *others])
    text = "\n".join([table, *(remark + "\n" for remark in remarks), ""])
    DOCUMENT.write_text(f"{before}{mark}\n{text}{END}{after}", encoding="utf-8")


def show(results, machine, markdown):
    rows = [HEADS] + [cells(result) for result in results]
    print_rows(rows)
    print("\n" + summary(results, machine))
    if markdown:
        write_rows("./scripts/bench --markdown", rows, f"{summary(results, machine)}, {machine['date'][:10]}.")
