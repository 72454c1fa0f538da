#!/usr/bin/env python3
"""Prints benchmark results as ratios and checks them against the gates.

    bench_table.py [--gates FILE] RESULT.json...

A result file is Google Benchmark's JSON. A benchmark is a pair: `BM_Name/engine` is the code under test, `BM_Name/floor`
the least that the same work can cost, measured in the same run; arguments may follow (`BM_Name/engine/1000`). The ratio
is the median of the engine's repetitions over the median of the floor's, so that 1 means as fast as the floor. The gate
file says how large a ratio may be: {"BM_Name": {"max_ratio": 1.5}}; "BM_Name/1000" names one argument only.

Two more gates: {"max_growth": 1.5} bounds the engine's time at the largest argument over that at the smallest.
{"counter": "bytes", "max": 64} bounds a counter of the benchmark, which is then no pair, at every argument; with
"constant": true the counter must be the same at all of them.

Exits 1 when a value is above its gate, half of a pair is missing, or a gate's benchmark did not run.
"""

import argparse
import json
import statistics
import sys

SIDES = ("engine", "floor")
UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def parse_name(name):
    """`BM_X/engine/10/repeats:9/real_time` -> ("BM_X/10", "engine", True); None when no side is named."""
    words = name.split("/")
    side = next((word for word in words if word in SIDES), None)
    if side is None:
        return None
    kept = [word for word in words if word != side and word != "real_time" and ":" not in word]
    kept = [word for word in kept if word != "manual_time"]
    # A time that the benchmark took itself is reported as the real one.
    return "/".join(kept), side, "real_time" in words or "manual_time" in words


def read_medians(paths):
    """{pair: {side: median in nanoseconds}} over the repetitions in all files."""
    samples = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            results = json.load(file)["benchmarks"]
        for result in results:
            parsed = parse_name(result["name"])
            if parsed is None or result.get("run_type") == "aggregate":
                continue
            if result.get("error_occurred"):
                sys.exit(f"bench_table: {result['name']} failed: {result.get('error_message', '')}")
            pair, side, by_clock = parsed
            time = result["real_time" if by_clock else "cpu_time"] * UNITS[result["time_unit"]]
            samples.setdefault(pair, {}).setdefault(side, []).append(time)
    return {pair: {side: statistics.median(times) for side, times in sides.items()} for pair, sides in samples.items()}


def read_counters(paths, gates):
    """{benchmark: [value of the counter that its gate names]} in the order of the arguments."""
    counters = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            results = json.load(file)["benchmarks"]
        for result in results:
            name = result["name"].split("/")
            counter = gates.get(name[0], {}).get("counter")
            if counter in result and result.get("run_type") != "aggregate":
                counters.setdefault(f"{name[0]}/{name[1]}", []).append(result[counter])
    return {name: statistics.median(values) for name, values in counters.items()}


def argument_of(pair):
    return int(pair.split("/")[1])


def growth_rows(medians, gates):
    """The rows and failures of the gates on growth."""
    rows, failures = [], []
    for name, gate in sorted(gates.items()):
        if "max_growth" not in gate:
            continue
        pairs = sorted((pair for pair in medians if pair.split("/")[0] == name), key=argument_of)
        if len(pairs) < 2:
            continue
        growth = medians[pairs[-1]].get("engine", 0) / medians[pairs[0]].get("engine", 1)
        passed = growth <= gate["max_growth"]
        if not passed:
            failures.append(f"{name} grows by {growth:.2f}, at most {gate['max_growth']} is allowed")
        span = f"{name} from {argument_of(pairs[0])} to {argument_of(pairs[-1])}"
        rows.append((span, "", "", f"{growth:.2f}", str(gate["max_growth"]), "ok" if passed else "TOO STEEP"))
    return rows, failures


def counter_rows(counters, gates):
    """The rows and failures of the gates on counters."""
    rows, failures = [], []
    for pair, value in counters.items():
        gate = gates[pair.split("/")[0]]
        others = [other for name, other in counters.items() if name.split("/")[0] == pair.split("/")[0]]
        passed = value <= gate.get("max", value) and not (gate.get("constant") and len(set(others)) > 1)
        if not passed:
            failures.append(f"{pair} has {value:.4g} {gate['counter']}")
        limit = str(gate.get("max", "")) or "constant"
        rows.append((pair, f"{value:.4g} {gate['counter']}", "", "", limit, "ok" if passed else "TOO MUCH"))
    return rows, failures


def gate_of(gates, pair):
    return gates.get(pair, gates.get(pair.split("/")[0], {})).get("max_ratio")


def readable(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= UNITS[unit]:
            return f"{nanoseconds / UNITS[unit]:.2f} {unit}"
    return f"{nanoseconds:.2f} ns"


def table(medians, counters, gates):
    """The rows to print and the failures found."""
    rows = [("benchmark", "engine", "floor", "ratio", "gate", "")]
    failures = []
    for pair, sides in sorted(medians.items()):
        missing = [side for side in SIDES if side not in sides]
        if missing:
            failures.append(f"{pair} has no {missing[0]}")
            continue
        ratio = sides["engine"] / sides["floor"]
        gate = gate_of(gates, pair)
        passed = gate is None or ratio <= gate
        if not passed:
            failures.append(f"{pair} takes {ratio:.2f} times its floor, at most {gate} is allowed")
        verdict = "" if gate is None else "ok" if passed else "TOO SLOW"
        rows.append((pair, readable(sides["engine"]), readable(sides["floor"]), f"{ratio:.2f}",
                     "" if gate is None else str(gate), verdict))
    ran = {name for pair in [*medians, *counters] for name in (pair, pair.split("/")[0])}
    for more_rows, more_failures in (growth_rows(medians, gates), counter_rows(counters, gates)):
        rows += more_rows
        failures += more_failures
    failures += [f"{name} has a gate and did not run" for name in sorted(gates) if name not in ran]
    return rows, failures


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--gates", help="JSON file with the greatest ratio of each benchmark")
    parser.add_argument("results", nargs="+", metavar="RESULT")
    arguments = parser.parse_args()
    gates = {}
    if arguments.gates:
        with open(arguments.gates, encoding="utf-8") as file:
            gates = json.load(file)
    rows, failures = table(read_medians(arguments.results), read_counters(arguments.results, gates), gates)
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        cells = [cell.ljust(width) if i == 0 else cell.rjust(width) for i, (cell, width) in enumerate(zip(row, widths))]
        print("  ".join(cells).rstrip())
    for failure in failures:
        print(f"bench_table: {failure}", file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
