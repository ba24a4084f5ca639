"""The table as text, and as Markdown in doc/performance.md."""

from pathlib import Path

DOCUMENT = Path(__file__).resolve().parent.parent / "doc/performance.md"
FROM, TO = "<!-- table: ./scripts/bench --markdown -->\n", "<!-- end of table -->\n"
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


def print_table(results, machine):
    rows = [HEADS] + [cells(result) for result in results]
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEADS))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
    print("\n" + summary(results, machine))


def write_document(results, machine):
    """Replaces what stands between the two marks."""
    text = DOCUMENT.read_text(encoding="utf-8")
    before, found, rest = text.partition(FROM)
    _, found_end, after = rest.partition(TO)
    if not found or not found_end:
        raise ValueError(f"{DOCUMENT} has no place for the table")
    rows = [HEADS, ["---"] * len(HEADS)] + [cells(result) for result in results]
    table = "".join(f"| {' | '.join(row)} |\n" for row in rows)
    DOCUMENT.write_text(f"{before}{FROM}\n{table}\n{summary(results, machine)}, "
                        f"{machine['date'][:10]}.\n\n{TO}{after}", encoding="utf-8")
