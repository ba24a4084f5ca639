"""Draws what operations cost as collections and lists of observers grow: doc/growth.svg."""

import subprocess
from pathlib import Path

PICTURE = Path(__file__).resolve().parent.parent / "doc/growth.svg"
OPERATIONS = {"lookup": "#0072b2", "update": "#d55e00", "delete and insert": "#009e73"}
STORES = {"ours": "lw 2 pt 7 ps 0.4", "flat": "lw 1 dt 2 pt 6 ps 0.4"}

SETTINGS = """
set terminal svg size 960,420 font 'sans-serif,12' background 'white'
set output '{picture}'
set multiplot layout 1,2
set logscale xy
set grid lw 0.5 lc '#dddddd'
set border 3
set tics nomirror
unset mxtics
unset mytics
set key top left reverse Left samplen 2
set ylabel 'ns for one operation'
set yrange [4:20000]
set ytics ('10' 10, '100' 100, '1,000' 1000, '10,000' 10000)
"""
KEYS = """
set title 'as the collection grows, one observer'
set xlabel 'keys'
set xtics ('10' 10, '100' 100, '1,000' 1000, '10,000' 10000, '100,000' 100000, '1,000,000' 1000000)
plot [7:1.5e6] """
OBSERVERS = """
set title 'an update of 1,000 keys, as its observers grow'
set xlabel 'observers'
set xtics ('0' 1, '1' 2, '10' 11, '100' 101, '1,000' 1001)  # there is no zero on such a scale
plot [0.8:1500] """


def curve(points, operation, store, colour, shift=0):
    """gnuplot's data block and the words that draw it, moved to the right by `shift`."""
    name = f"${operation.replace(' ', '_')}_{store}"
    lines = [f"{count + shift} {value:.2f}" for count, value in sorted(points.items())]
    block = "\n".join([f"{name} << end", *lines, "end"])
    return block, (f"{name} with linespoints lc '{colour}' {STORES[store]} "
                   f"title '{operation}, {store}'")


def picture(medians):
    """`medians` are nanoseconds by name, growth/OPERATION@COUNT/STORE."""
    points = {}
    for name, value in medians.items():
        _, variant, store = name.split("/")
        operation, _, count = variant.partition("@")
        points.setdefault((operation, store), {})[int(count)] = value
    keys = [curve(points[operation, store], operation, store, colour)
            for operation, colour in OPERATIONS.items() for store in STORES]
    observers = [curve(points["observers", store], "update told to all", store, OPERATIONS["update"], 1)
                 for store in STORES]
    return "\n".join([SETTINGS.format(picture=PICTURE), *[block for block, _ in keys + observers],
                      KEYS + ", ".join(words for _, words in keys),
                      OBSERVERS + ", ".join(words for _, words in observers), ""])


def draw(medians):
    subprocess.run(["gnuplot", "-"], input=picture(medians), text=True, check=True)
