#!/usr/bin/env python3
"""Checks that includes between the rooms of the project point one way.

    check_layering.py [ROOT]

Each room may include itself and the rooms named for it below. Where the design asks for a way back, the one file that
takes it is named with its reason. An exported header belongs to the room that implements it.
"""

import pathlib
import re
import sys

# room: the rooms it may include. "records" are the exported headers of handles, plain data and bare interfaces.
ALLOWED = {
    "base": [],
    "glbinding": ["base"],
    "records": ["base"],
    "log": ["base"],
    "commands": ["base", "records"],
    "renderer": ["base", "records", "commands", "log"],
    "platform": ["base", "records", "glbinding", "log"],
    "present": ["base", "records", "glbinding", "platform"],
    "gl": ["base", "records", "glbinding", "commands", "renderer", "present", "platform"],
    "vk": ["base", "records", "commands", "renderer", "present"],
    "context": ["base", "records", "glbinding", "commands", "renderer", "gl", "vk", "present", "platform", "log"],
}

# (file, header): why this way back exists.
EXCEPTIONS = {
    ("src/commands/CommandDispatch.cpp", "renderer/RendererBase.h"): "a command calls its renderer's overload",
    ("src/renderer/RenderLoop.cpp", "context/ContextBase.h"): "the render thread makes its context current",
    ("src/platform/GLUtils.cpp", "context/ContextGL.h"): "deleting a context drops the binding that ContextGL keeps",
    ("src/platform/GLUtils.cpp", "gl/GLTables.h"): "the depth functions have the indices of the renderer's state",
    ("src/present/ReversePresentFrameGL_GL.cpp", "gl/DebugGroup.h"): "its work stands in a debug group",
    ("glbinding/include/glbinding/client.h", "renderengine/Export.h"): "it declares the accessor that the engine exports",
}

# Exported headers that are neither plain data nor bare interfaces, and the room that implements each.
EXPORTED = {
    "BufferedRenderCache.h": "commands",
    "ContextInterface.h": "context",
    "Format.h": "platform",
    "FramebufferParameterGLEventArg.h": "present",
    "GLUtils.h": "platform",
    "PresentFrameGL_GL.h": "present",
    "RenderCache.h": "commands",
    "ReversePresentFrameGL_GL.h": "present",
    "renderengine.h": "context",
}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


def room_of_file(path):
    parts = path.parts
    if parts[0] == "src":
        return parts[1]
    if parts[0] == "include":
        return EXPORTED.get(path.name, "records")
    return parts[0]


def room_of_header(name, including):
    """The room of an included header; None for headers of the system and of packages."""
    first = name.split("/")[0]
    if first == "kavelor":
        return "base"
    if first == "glbinding":
        return "glbinding"
    if first == "renderengine":
        return EXPORTED.get(name.split("/")[-1], "records")
    if "/" not in name or first not in ALLOWED:
        return room_of_file(including)
    return first


def check_file(root, path):
    """(errors, exceptions used)"""
    relative = path.relative_to(root)
    room = room_of_file(relative)
    errors, used = [], set()
    if room not in ALLOWED:
        return [f"{relative}: the room {room} is not in the table"], used
    for kind, name in INCLUDE.findall(path.read_text(encoding="utf-8")):
        if kind == "<" and name.split("/")[0] not in ("kavelor", "glbinding", "renderengine"):
            continue
        target = room_of_header(name, relative)
        if target == room or target in ALLOWED[room]:
            continue
        key = (relative.as_posix(), name)
        if key in EXCEPTIONS:
            used.add(key)
        else:
            errors.append(f"{relative}: the room {room} may not include {name} of the room {target}")
    return errors, used


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent.parent).resolve()
    errors, used, count = [], set(), 0
    for folder in ("base", "glbinding", "include", "src"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp", ".inc"):
                found, taken = check_file(root, path)
                errors += found
                used |= taken
                count += 1
    errors += [f"{path}: the exception for {name} is not needed any more" for path, name in EXCEPTIONS.keys() - used]
    for error in errors:
        print(error)
    print(f"check_layering: {count} files, {len(errors)} errors")
    return 1 if errors or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
