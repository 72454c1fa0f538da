"""Tests of tools/check_layering.py on small trees."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools/check_layering.py"


class CheckLayering(unittest.TestCase):
    def run_check(self, files):
        """The errors that the script prints for a tree of these files."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            run = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True, check=False)
        return [line for line in run.stdout.splitlines() if "may not include" in line or "is not in the table" in line]

    def test_way_down_is_allowed(self):
        self.assertEqual(self.run_check({
            "src/gl/A.cpp": '#include "commands/B.h"\n#include <kavelor/SbVec.h>\n#include "C.h"\n#include <vector>\n',
            "src/commands/B.h": '#include <renderengine/Handle.h>\n',
        }), [])

    def test_way_up_is_found(self):
        self.assertEqual(self.run_check({"src/commands/B.cpp": '#include "gl/BufferGL.h"\n'}),
                         ["src/commands/B.cpp: the room commands may not include gl/BufferGL.h of the room gl"])

    def test_exported_header_belongs_to_its_room(self):
        self.assertEqual(self.run_check({"src/commands/B.cpp": "#  include <renderengine/ContextInterface.h>\n"}),
                         ["src/commands/B.cpp: the room commands may not include renderengine/ContextInterface.h of the "
                          "room context"])

    def test_base_knows_nobody(self):
        self.assertEqual(len(self.run_check({"base/src/A.cpp": '#include <renderengine/Handle.h>\n'})), 1)

    def test_new_room_needs_a_row(self):
        self.assertEqual(self.run_check({"src/audio/A.cpp": ""}), ["src/audio/A.cpp: the room audio is not in the table"])


if __name__ == "__main__":
    unittest.main()
