#!/usr/bin/env python3
"""Draws benchmark results as an SVG picture.

    bench_plot.py [--gates FILE] -o PICTURE.svg RESULT.json...

On top a bar for the ratio of each pair, with a mark where its gate is; below, for each benchmark whose growth has a
gate, the engine's time (solid) and the floor's (dashed) at each argument, as multiples of the engine's at the
smallest, with a line where that gate is. Without a gate file, of each benchmark with at least three arguments.
"""

import argparse
import html
import json
import math
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import bench_table  # noqa: E402

WIDTH, LEFT, ROW = 900, 300, 20
COLORS = ["#1f77b4", "#d62728", "#2ca02c", "#9467bd", "#8c564b", "#17becf"]


def text(x, y, content, anchor="start", color="#222"):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{color}">{html.escape(content)}</text>'


def line(x1, y1, x2, y2, color="#999", dash=""):
    dashes = f' stroke-dasharray="{dash}"' if dash else ""
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{color}"{dashes}/>'


def bars(medians, gates, top):
    """The parts of the upper picture and its height."""
    ratios = {pair: sides["engine"] / sides["floor"] for pair, sides in sorted(medians.items()) if len(sides) == 2}
    limits = [gate for gate in (bench_table.gate_of(gates, pair) for pair in ratios) if gate is not None]
    scale = (WIDTH - LEFT - 60) / max([1.2, *ratios.values(), *limits])
    bottom = top + ROW * len(ratios)
    parts = [line(LEFT, bottom, WIDTH - 60, bottom), line(LEFT, top, LEFT, bottom)]
    for step in range(int((WIDTH - LEFT - 60) / scale * 4) + 1):
        x = LEFT + step / 4 * scale
        parts += [line(x, bottom, x, bottom + 4), text(x, bottom + 17, f"{step / 4:g}", "middle")]
    parts.append(text((LEFT + WIDTH - 60) / 2, bottom + 34, "time of the engine / time of the floor", "middle"))
    parts += [line(LEFT + scale, top, LEFT + scale, bottom, dash="3,3"), text(LEFT + scale, top - 6, "floor", "middle")]
    for row, (pair, ratio) in enumerate(ratios.items()):
        y = top + ROW * row
        gate = bench_table.gate_of(gates, pair)
        color = "#1f77b4" if gate is None or ratio <= gate else "#d62728"
        parts.append(text(LEFT - 8, y + 14, pair.removeprefix("BM_"), "end"))
        parts.append(f'<rect x="{LEFT}" y="{y + 3}" width="{ratio * scale:.1f}" height="{ROW - 6}" fill="{color}"/>')
        parts.append(text(LEFT + ratio * scale + 6, y + 14, f"{ratio:.2f}"))
        if gate is not None:
            parts.append(line(LEFT + gate * scale, y + 1, LEFT + gate * scale, y + ROW - 1, "#000"))
    return parts, ROW * len(ratios) + 34


def series_of(medians, gates):
    """{benchmark: {side: [(argument, time)]}} of those to be drawn as curves."""
    series = {}
    for pair, sides in medians.items():
        name, *arguments = pair.split("/")
        if len(arguments) == 1 and arguments[0].isdigit():
            for side, time in sides.items():
                series.setdefault(name, {}).setdefault(side, []).append((int(arguments[0]), time))
    return {name: {side: sorted(points) for side, points in sides.items()} for name, sides in series.items()
            if len(sides.get("engine", [])) >= 3 and (not gates or "max_growth" in gates.get(name, {}))}


def curves(series, gates, top, height=220):
    """The parts of the lower picture."""
    if not series:
        return []
    arguments = sorted({argument for sides in series.values() for points in sides.values() for argument, _ in points})
    relative = {(name, side): [(argument, time / sides["engine"][0][1]) for argument, time in points]
                for name, sides in series.items() for side, points in sides.items()}
    limits = sorted({gate["max_growth"] for name, gate in gates.items() if name in series})
    largest = max([value for points in relative.values() for _, value in points] + limits) * 1.1
    span = max(1e-9, math.log10(arguments[-1]) - math.log10(arguments[0]))

    def place(argument, value):
        x = LEFT + (math.log10(argument) - math.log10(arguments[0])) / span * (WIDTH - LEFT - 60)
        return x, top + height * (1 - value / largest)

    parts = [line(LEFT, top + height, WIDTH - 60, top + height), line(LEFT, top, LEFT, top + height)]
    for argument in arguments:
        parts.append(text(place(argument, 0)[0], top + height + 16, f"{argument:,}", "middle"))
    for step in range(int(largest * 2) + 1):
        y = place(arguments[0], step / 2)[1]
        parts += [text(LEFT - 8, y + 4, f"{step / 2:g}", "end"), line(LEFT, y, WIDTH - 60, y, "#eee")]
    for limit in limits:
        y = place(arguments[0], limit)[1]
        parts += [line(LEFT, y, WIDTH - 60, y, "#000"), text(WIDTH - 56, y + 4, "gate")]
    parts.append(text((LEFT + WIDTH - 60) / 2, top + height + 34, "argument of the benchmark", "middle"))
    middle = top + height / 2
    parts.append(f'<text x="{LEFT - 44}" y="{middle:.1f}" text-anchor="middle" fill="#222" '
                 f'transform="rotate(-90 {LEFT - 44} {middle:.1f})">time, engine at the smallest = 1</text>')
    for row, ((name, side), points) in enumerate(sorted(relative.items())):
        color, dash = COLORS[row // 2 % len(COLORS)], "" if side == "engine" else "5,4"
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in (place(*point) for point in points))
        parts.append(f'<polyline points="{path}" fill="none" stroke="{color}" stroke-width="2" '
                     f'stroke-dasharray="{dash}"/>')
        parts.append(line(12, top + 10 + ROW * row, 36, top + 10 + ROW * row, color, dash))
        parts.append(text(42, top + 14 + ROW * row, f"{name.removeprefix('BM_')} {side}", color=color))
    return parts


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--gates", help="JSON file with the greatest ratio of each benchmark")
    parser.add_argument("-o", "--output", required=True, help="the picture")
    parser.add_argument("results", nargs="+", metavar="RESULT")
    arguments = parser.parse_args()
    gates = {}
    if arguments.gates:
        with open(arguments.gates, encoding="utf-8") as file:
            gates = json.load(file)
    medians = bench_table.read_medians(arguments.results)
    parts, height = bars(medians, gates, 50)
    lower = curves(series_of(medians, gates), gates, height + 110)
    parts = [text(12, 22, "Engine over floor, medians; the black mark is the gate"), *parts]
    if lower:
        parts += [text(12, height + 90, "Growth, the same work in all: the engine solid, the floor dashed"), *lower]
    total = height + (380 if lower else 70)
    with open(arguments.output, "w", encoding="utf-8") as file:
        file.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{total}" '
                   f'font-family="sans-serif" font-size="12">\n<rect width="100%" height="100%" fill="#fff"/>\n')
        file.write("\n".join(parts) + "\n</svg>\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
