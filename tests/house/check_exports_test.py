"""Tests of tools/check_exports.py on small libraries."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/check_exports.py"

# What the script reads of a DLL: the part of the export table, and the imports.
DLL = """
librenderengine.dll:     file format pei-x86-64

The Import Tables (interpreted .idata section contents)

 001de000\t001de0a0 00000000 00000000 001e0730 001dea28

\tDLL Name: {library}
\tvma:  Hint/Ord Member-Name Bound-To
\t1df298\t  346  {imported}

 001de014\t001de2f8 00000000 00000000 001e08b4 001dea80

The Export Tables (interpreted .edata section contents)

[Ordinal/Name Pointer] Table
\t[   0] _ZN12renderengine4initEv
\t[   1] {exported}

The Function Table (interpreted .pdata section contents)
"""


class CheckExports(unittest.TestCase):
    def run_check(self, library, path=None):
        """The errors of the script, without those of what a small library lacks, and whether there were any."""
        environment = dict(os.environ, PATH=f"{path}:{os.environ['PATH']}") if path else None
        run = subprocess.run([sys.executable, SCRIPT, library], capture_output=True, text=True, check=False,
                             env=environment)
        self.assertRegex(run.stdout, r"check_exports: \d+ classes and \d+ functions exported", run.stderr)
        return [line for line in run.stdout.splitlines()[:-1] if "nothing of it exported" not in line], run

    def check_code(self, code):
        with tempfile.TemporaryDirectory() as folder:
            library = pathlib.Path(folder, "library.so")
            subprocess.run(["c++", "-shared", "-fPIC", "-fvisibility=hidden", "-x", "c++", "-", "-o", library],
                           input='#define API __attribute__((visibility("default")))\n' + code, text=True, check=True)
            return self.run_check(library)[0]

    def check_dll(self, library="OPENGL32.dll", imported="wglMakeCurrent", exported="_ZN12renderengine6finishEv"):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "library.dll")
            file.write_bytes(b"MZ")
            pathlib.Path(folder, "text").write_text(
                DLL.format(library=library, imported=imported, exported=exported), encoding="utf-8")
            tool = pathlib.Path(folder, "objdump")
            tool.write_text(f"#!/bin/sh\ncat '{folder}/text'\n", encoding="utf-8")
            tool.chmod(0o755)
            return self.run_check(file, folder)

    def test_marked_function_may_be_exported(self):
        self.assertEqual(self.check_code("namespace renderengine { API void init() {} void hidden() {} }"), [])

    def test_other_function_may_not(self):
        self.assertEqual(self.check_code("namespace renderengine { API void secret() {} }"),
                         ["exported and not marked RENDERENGINE_API: renderengine::secret()"])

    def test_opengl_is_not_imported(self):
        self.assertEqual(self.check_code('extern "C" void glClear(unsigned); API void clear() { glClear(0); }'),
                         ["imports an OpenGL function: glClear"])

    def test_dll_with_marked_functions_passes(self):
        errors, run = self.check_dll()
        self.assertEqual(errors, [])
        self.assertTrue(re.search(r"exported, \d+ errors$", run.stdout.rstrip()))
        self.assertIn(" 2 functions exported", run.stdout)

    def test_dll_exports_nothing_by_accident(self):
        self.assertEqual(self.check_dll(exported="_ZN3fmt6secretEv")[0], ["foreign name exported: fmt::secret()"])
        self.assertEqual(self.check_dll(exported="_ZN12renderengine6secretEv")[0],
                         ["exported and not marked RENDERENGINE_API: renderengine::secret()"])

    def test_dll_imports_no_opengl(self):
        self.assertEqual(self.check_dll(imported="glClear")[0], ["imports an OpenGL function: glClear"])

    def test_dll_needs_no_other_library(self):
        self.assertEqual(self.check_dll(library="libfmt.dll", imported="format")[0],
                         ["needs a library that is not expected: libfmt.dll"])

    def test_missing_names_are_errors(self):
        _, run = self.check_dll()
        self.assertEqual(run.returncode, 1)
        self.assertIn("marked RENDERENGINE_API and nothing of it exported: RenderCache", run.stdout)


if __name__ == "__main__":
    unittest.main()
