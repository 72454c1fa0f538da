#!/usr/bin/env python3
"""Runs clang-tidy over the project's own sources in parallel.

    tidy.py BUILD [--jobs N] [SOURCE...]

BUILD is a folder that was built with Ninja and clang, for its compile commands and its record of included headers. A
source that passed is not looked at again before it, a header of the project that it includes, its command or
.clang-tidy changes. Generated sources and tests are left out.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["base", "src", "examples", "tools"]


def project_sources(build):
    """[(source, command)] of the rooms, each source once."""
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    sources = {}
    for entry in commands:
        source = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if any(source.is_relative_to(ROOT / room) for room in ROOMS):
            sources[source] = (entry["command"], entry.get("output", ""))
    return sources


def included_headers(build):
    """{output: [header of the project]} from Ninja's record."""
    lines = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=True).stdout
    headers, output = {}, None
    for line in lines.splitlines():
        if line.startswith("    "):
            path = (build / line.strip()).resolve()
            if path.is_relative_to(ROOT) and not path.is_relative_to(build):
                headers[output].append(path)
        elif ":" in line:
            output = line.split(":")[0]
            headers[output] = []
    return headers


def state_of(source, command, headers, version):
    digest = hashlib.sha256((version + command).encode())
    for path in [ROOT / ".clang-tidy", source, *sorted(headers)]:
        digest.update(str(path.relative_to(ROOT)).encode() + path.read_bytes())
    return digest.hexdigest()


def tidy(build, source):
    """(source, passed, text, seconds)"""
    start = time.monotonic()
    command = ["clang-tidy", "--quiet", "-p", str(build), str(source)]
    result = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    return source, result.returncode == 0, result.stdout, time.monotonic() - start


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--verbose", action="store_true", help="print the time that each source takes")
    parser.add_argument("sources", nargs="*", type=pathlib.Path, metavar="SOURCE")
    arguments = parser.parse_intermixed_args()
    build = arguments.build.resolve()
    stamps = build / "tidy"
    stamps.mkdir(exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], capture_output=True, text=True, check=True).stdout
    headers = included_headers(build)
    wanted = {path.resolve() for path in arguments.sources}
    states = {}
    for source, (command, output) in sorted(project_sources(build).items()):
        if wanted and source not in wanted:
            continue
        key = os.path.relpath(output, build) if os.path.isabs(output) else output
        states[source] = state_of(source, command, headers.get(key, []), version)
    todo = [source for source, state in states.items() if not (stamps / state).exists()]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for source, passed, text, seconds in pool.map(lambda item: tidy(build, item), todo):
            if passed:
                (stamps / states[source]).touch()
            else:
                failed += 1
                print(text)
            if arguments.verbose:
                print(f"{seconds:6.1f} s  {source.relative_to(ROOT)}")
    print(f"tidy: {len(states)} sources, {len(todo)} looked at, {failed} with findings")
    return 1 if failed or not states else 0


if __name__ == "__main__":
    sys.exit(main())
