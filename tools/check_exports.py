#!/usr/bin/env python3
"""Compares what the shared library exports with what the headers say, and what it imports with what it may.

    check_exports.py LIBRARY

Of the namespace renderengine the library exports the classes and functions that a header marks RENDERENGINE_API, all of
them and nothing else. It imports no OpenGL function: those are reached through the current context's table. LIBRARY is
a shared object, or a DLL of Windows, which imports the few functions of WGL that no driver answers by name, and needs
no other libraries than those of the system, of the compiler's run time and the base library.
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


# What the DLL may import of opengl32.dll: WGL's own functions, which exist without a context.
WGL_IMPORTS = {"wglCreateContext", "wglDeleteContext", "wglGetCurrentContext", "wglGetCurrentDC", "wglGetProcAddress",
               "wglMakeCurrent"}
# Libraries that the DLL may need, in lower case.
NEEDED_LIBRARIES = {"gdi32.dll", "kernel32.dll", "msvcrt.dll", "opengl32.dll", "user32.dll", "libgcc_s_seh-1.dll",
                    "libstdc++-6.dll", "libwinpthread-1.dll", "libkavelorbase.dll"}


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


class SharedObject:
    """What a shared object exports and imports, demangled."""

    # Templates of the C++ library made for our types are weak there and belong to nobody.
    exported_namespaces = {"std", "__gnu_cxx", "void", "bool"}

    def __init__(self, library):
        self.exported = self.symbols(library, "--defined-only")
        self.imported = self.symbols(library, "--undefined-only")

    @staticmethod
    def symbols(library, option):
        text = run("nm", "--dynamic", "--demangle", "--format=posix", option, library)
        return [re.sub(r" [A-Za-z](?: [0-9a-f]+ ?[0-9a-f]*)?\s*$", "", line) for line in text.splitlines()]

    def is_ours(self, symbol):
        """Whether the rules are about an exported symbol."""
        return "renderengine::" in symbol or re.match(r"(spdlog|fmt|gl[A-Z]|stbi|kvr_)", symbol)

    def import_errors(self):
        return [f"imports an OpenGL function: {symbol}" for symbol in self.imported
                if re.match(r"(gl|glX|wgl)[A-Z]", symbol.strip())]


class Dll:
    """The same for a DLL. It exports what is marked and nothing by accident, so each of its names counts."""

    exported_namespaces = set()

    def __init__(self, library):
        text = run("objdump", "--private-headers", library)
        names = re.search(r"^\[Ordinal/Name Pointer\] Table.*?\n(.*?)\n\n", text, re.S | re.M)
        mangled = re.findall(r"^\s*\[[^]]*\](?: \+base\[[^]]*\])?(?:\s+[0-9a-f]+)?\s+(\S+)$",
                             names.group(1) if names else "", re.M)
        self.exported = run("c++filt", text="\n".join(mangled)).splitlines()
        self.imported = {}
        for part in re.split(r"^\s*DLL Name: ", text, flags=re.M)[1:]:
            library_name, _, rest = part.partition("\n")
            table = re.split(r"\n\s*\n", rest)[0]
            self.imported[library_name.strip().lower()] = re.findall(r"^\s*[0-9a-f]+\s+\d+\s+(\S+)", table, re.M)

    def is_ours(self, symbol):
        return True

    def import_errors(self):
        errors = [f"needs a library that is not expected: {name}" for name in self.imported
                  if name not in NEEDED_LIBRARIES]
        return errors + [f"imports an OpenGL function: {symbol}" for symbol in self.imported.get("opengl32.dll", [])
                         if symbol not in WGL_IMPORTS]


def read_library(library):
    with open(library, "rb") as file:
        return Dll(library) if file.read(2) == b"MZ" else SharedObject(library)


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
    for symbol in filter(library.is_ours, library.exported):
        name = qualified_name(symbol)
        if name[0] != "renderengine":
            if name[0] not in library.exported_namespaces:
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


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    library = read_library(sys.argv[1])
    errors, classes, functions = check_exported(library)
    errors += library.import_errors()
    for error in errors:
        print(error)
    print(f"check_exports: {classes} classes and {functions} functions exported, {len(errors)} errors")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
