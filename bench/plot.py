#!/usr/bin/env python3
"""Draws the tables of a benchmark document: one panel a table, one bar a program, by median.

Usage: bench/plot.py DOCUMENT.md PICTURE.png
"""

import sys

import matplotlib

matplotlib.use("agg")
from matplotlib import pyplot


def tables(path):
    """[(heading, [(program, median seconds)])] of the whole-job tables, the first rows being ours."""
    found = []
    with open(path, encoding="utf-8") as file:
        for line in file:
            cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
            if line.startswith("### "):
                found.append((line[4:].strip(), []))
            elif found and len(cells) == 6 and cells[1].replace(".", "").isdigit():
                found[-1][1].append((cells[0], float(cells[2])))
    return [(heading, rows) for heading, rows in found if rows]


def draw(panel, heading, rows):
    names, seconds = zip(*rows)
    colours = ["#2b6cb0"] + ["#b8c0cc"] * (len(rows) - 1)
    bars = panel.barh(names, seconds, color=colours, height=0.6)
    panel.bar_label(bars, fmt=" %.3f s", fontsize=8)
    panel.set_title(heading, fontsize=9, loc="left")
    panel.set_xlim(0, max(seconds) * 1.25)
    panel.invert_yaxis()
    panel.xaxis.set_visible(False)
    panel.tick_params(axis="y", length=0, labelsize=8)
    panel.spines[["top", "right", "bottom"]].set_visible(False)


def main():
    source, target = sys.argv[1:]
    found = tables(source)
    rows = (len(found) + 1) // 2
    figure, panels = pyplot.subplots(rows, 2, figsize=(9, 1.5 * rows), layout="constrained")
    for panel in panels.flat[len(found):]:
        panel.set_visible(False)
    for panel, (heading, entries) in zip(panels.flat, found):
        draw(panel, heading, entries)
    figure.savefig(target, dpi=100, metadata={"Software": None})


if __name__ == "__main__":
    main()
