"""Every setting that the sources read is documented, with its type and default, and listed by the viewer's --info."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def settings_of_sources():
    """Pairs of type and default by key, as the libraries read them."""
    settings = {}
    for room in ("src", "base", "glbinding"):
        for path in sorted((ROOT / room).rglob("*.cpp")):
            text = path.read_text(encoding="utf-8")
            for kind, key, default in re.findall(
                    r'SoPreferences::get(Bool|Int|Float|String)\(\s*"(KVR_\w+)",\s*([^()]+?)\)', text):
                settings.setdefault(key, set()).add((kind.lower().replace("int", "integer"), default))
    return settings


def settings_of_documentation():
    text = (ROOT / "docs/settings.md").read_text(encoding="utf-8")
    return {key: (kind, default)
            for key, kind, default in re.findall(r"^\| `(KVR_\w+)` \| (\w+) \| ([^|]+?) \|", text, re.M)}


class Settings(unittest.TestCase):
    def test_there_are_settings(self):
        self.assertGreater(len(settings_of_sources()), 15)

    def test_each_is_documented_as_it_is_read(self):
        documented = settings_of_documentation()
        self.assertEqual({key: {documented[key]} if key in documented else None for key in settings_of_sources()},
                         settings_of_sources())

    def test_what_is_documented_is_read(self):
        self.assertEqual(set(settings_of_documentation()) - set(settings_of_sources()), set())

    def test_the_viewer_lists_each(self):
        text = (ROOT / "examples/viewer/Info.cpp").read_text(encoding="utf-8")
        self.assertEqual(set(settings_of_sources()) - set(re.findall(r'"(KVR_\w+)"', text)), set())


if __name__ == "__main__":
    unittest.main()
