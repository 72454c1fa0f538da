#!/usr/bin/env python3
"""Compares what the shared library exports with what the headers say, and what it imports with what it may.

    check_exports.py LIBRARY

Of the namespace renderengine the library exports the classes and functions that a header marks RENDERENGINE_API, all of
them and nothing else. It imports no OpenGL function: those are reached through the current context's table.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADERS = ROOT / "include/renderengine"


# Marked classes of which nothing is exported on this platform, since all their members are inline.
INLINE_CLASSES = {"FramebufferParameterEventArg", "FramebufferParameterGLEventArg"}


def declarations(text):
    """The text of a header without comments and preprocessor lines."""
    text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)
    return re.sub(r"^\s*#.*$", "", text, flags=re.M)


def marked_names():
    """Qualified-name tails of marked classes, and names of marked functions."""
    classes, functions = set(), set()
    for header in sorted(HEADERS.rglob("*.h")):
        text = declarations(header.read_text(encoding="utf-8"))
        classes.update(re.findall(r"\b(?:class|struct)\s+RENDERENGINE_API\s+(\w+)", text))
        # A member of an unmarked class may be marked by itself; its name is enough to recognise it.
        functions.update(re.findall(r"(?<!class )(?<!struct )\bRENDERENGINE_API\b[^;{(]*?(\w+)\s*\(", text))
    return classes, functions


def symbols(library, *options):
    command = ["nm", "--dynamic", "--demangle", "--format=posix", *options, library]
    lines = subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()
    return [re.sub(r" [A-Za-z](?: [0-9a-f]+ ?[0-9a-f]*)?\s*$", "", line) for line in lines]


def qualified_name(symbol):
    """`vtable for renderengine::A::B` -> ["renderengine", "A", "B"]; arguments and template arguments are dropped."""
    name = re.sub(r"^(?:vtable|typeinfo|typeinfo name|VTT|construction vtable|guard variable|non-virtual thunk to|"
                  r"virtual thunk to)(?: for)? ", "", symbol)
    name = name.replace("(anonymous namespace)", "_anonymous_").replace("[abi:cxx11]", "")
    shorter = None
    while shorter != name:
        shorter, name = name, re.sub(r"(?<!operator)<[^<>]*>", "", name)
    name = re.sub(r"(?<!operator)\(.*", "", name)
    return name.split(" ")[-1].split("::")


def check_exported(library):
    classes, functions = marked_names()
    seen_classes, seen_functions, errors = set(), set(), []
    for symbol in symbols(library, "--defined-only"):
        if "renderengine::" not in symbol and not re.match(r"(spdlog|fmt|gl[A-Z]|stbi|kvr_)", symbol):
            continue
        name = qualified_name(symbol)
        if name[0] != "renderengine":
            # Templates of the C++ library made for our types are weak and belong to nobody.
            if name[0] not in ("std", "__gnu_cxx", "void", "bool"):
                errors.append(f"foreign name exported: {symbol}")
            continue
        owner = next((part for part in name[1:] if part in classes), None)
        if owner:
            seen_classes.add(owner)
        elif name[-1] in functions:
            seen_functions.add(name[-1])
        else:
            errors.append(f"exported and not marked RENDERENGINE_API: {symbol}")
    errors += [f"marked RENDERENGINE_API and nothing of it exported: {name}"
               for name in sorted((classes - seen_classes - INLINE_CLASSES) | (functions - seen_functions))]
    return errors, len(seen_classes), len(seen_functions)


def check_imported(library):
    return [f"imports an OpenGL function: {symbol}" for symbol in symbols(library, "--undefined-only")
            if re.match(r"(gl|glX|wgl)[A-Z]", symbol.strip())]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    errors, classes, functions = check_exported(sys.argv[1])
    errors += check_imported(sys.argv[1])
    for error in errors:
        print(error)
    print(f"check_exports: {classes} classes and {functions} functions exported, {len(errors)} errors")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
