#!/usr/bin/env python3
"""Compiles every exported header alone, as C++17 and as C++20, with g++ and clang++, warnings being errors.

    check_headers.py [--jobs N] [HEADER...]

Clients include one header at a time and may be newer than the library, so each header must bring what it needs.
"""

import argparse
import concurrent.futures
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOTS = ["include", "base/include", "glbinding/include"]
EXPORTED = ["include/renderengine", "base/include/kavelor", "glbinding/include/glbinding"]
COMPILERS = ["g++", "clang++"]
STANDARDS = ["c++17", "c++20"]
WARNINGS = ["-Wall", "-Wextra", "-Wshadow", "-Wconversion", "-Woverloaded-virtual", "-Werror"]


def include_name(header):
    for root in ROOTS:
        if header.is_relative_to(ROOT / root):
            return header.relative_to(ROOT / root).as_posix()
    raise ValueError(f"{header} is in none of {ROOTS}")


def compile_header(job):
    """The error text, or None."""
    header, compiler, standard = job
    command = [compiler, f"-std={standard}", "-fsyntax-only", *WARNINGS, *(f"-I{root}" for root in ROOTS), "-x", "c++", "-"]
    # Twice, so that a missing include guard is found too.
    source = f"#include <{include_name(header)}>\n" * 2
    result = subprocess.run(command, input=source, cwd=ROOT, capture_output=True, text=True, check=False)
    if result.returncode == 0:
        return None
    return f"{include_name(header)} with {compiler} -std={standard}:\n{result.stderr[:3000]}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("headers", nargs="*", type=pathlib.Path, metavar="HEADER")
    arguments = parser.parse_intermixed_args()
    headers = [path.resolve() for path in arguments.headers]
    headers = headers or sorted(path for folder in EXPORTED for path in (ROOT / folder).rglob("*.h"))
    jobs = [(header, compiler, standard) for header in headers for compiler in COMPILERS for standard in STANDARDS]
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        errors = [error for error in pool.map(compile_header, jobs) if error]
    for error in errors:
        print(error)
    print(f"check_headers: {len(headers)} headers, {len(jobs)} compilations, {len(errors)} failed")
    return 1 if errors or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
