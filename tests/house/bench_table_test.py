"""Tests of tools/bench_table.py and tools/bench_plot.py."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
SCRIPT = TOOLS / "bench_table.py"


def result(name, cpu, real=None, unit="ns", **more):
    return {"name": name, "run_type": "iteration", "cpu_time": cpu, "real_time": real or cpu, "time_unit": unit, **more}


class BenchTable(unittest.TestCase):
    def run_table(self, results, gates):
        with tempfile.TemporaryDirectory() as folder:
            data = pathlib.Path(folder, "result.json")
            data.write_text(json.dumps({"benchmarks": results}), encoding="utf-8")
            gate_file = pathlib.Path(folder, "gates.json")
            gate_file.write_text(json.dumps(gates), encoding="utf-8")
            return subprocess.run([sys.executable, SCRIPT, "--gates", gate_file, data], capture_output=True, text=True,
                                  check=False)

    def test_ratio_is_of_the_medians(self):
        results = [result("BM_A/engine", time) for time in (30, 31, 900)]
        results += [result("BM_A/floor", time) for time in (20, 1, 21)]
        run = self.run_table(results, {"BM_A": {"max_ratio": 1.6}})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertRegex(run.stdout, r"BM_A +31\.00 ns +20\.00 ns +1\.55 +1\.6 +ok")

    def test_ratio_above_its_gate_fails(self):
        run = self.run_table([result("BM_A/engine", 3), result("BM_A/floor", 2)], {"BM_A": {"max_ratio": 1.4}})
        self.assertEqual(run.returncode, 1)
        self.assertIn("TOO SLOW", run.stdout)
        self.assertIn("BM_A takes 1.50 times its floor, at most 1.4 is allowed", run.stderr)

    def test_gate_of_the_name_holds_for_each_argument(self):
        results = [result("BM_A/engine/10/repeats:9", 3), result("BM_A/floor/10/repeats:9", 2)]
        run = self.run_table(results, {"BM_A": {"max_ratio": 1.4}})
        self.assertEqual(run.returncode, 1)
        self.assertIn("BM_A/10 takes 1.50", run.stderr)

    def test_clock_is_compared_when_the_name_says_so(self):
        results = [result("BM_A/engine/real_time", 1, 50, "us"), result("BM_A/floor/real_time", 1, 25000)]
        run = self.run_table(results, {})
        self.assertRegex(run.stdout, r"BM_A +50\.00 us +25\.00 us +2\.00")

    def test_pair_without_floor_fails(self):
        run = self.run_table([result("BM_A/engine", 3)], {})
        self.assertEqual(run.returncode, 1)
        self.assertIn("BM_A has no floor", run.stderr)

    def test_gate_without_benchmark_fails(self):
        run = self.run_table([result("BM_A/engine", 2), result("BM_A/floor", 2)], {"BM_B": {"max_ratio": 1}})
        self.assertEqual(run.returncode, 1)
        self.assertIn("BM_B has a gate and did not run", run.stderr)

    def test_aggregates_and_other_benchmarks_are_left_out(self):
        results = [result("BM_A/engine", 2), result("BM_A/floor", 2), result("BM_Other", 7)]
        results.append({**result("BM_A/engine_median", 99), "run_type": "aggregate"})
        run = self.run_table(results, {})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertNotIn("99", run.stdout)

    def test_growth_is_of_the_engine_from_the_smallest_to_the_largest_argument(self):
        results = [result(f"BM_A/{side}/{argument}", time)
                   for argument, time in ((10, 2), (1000, 4), (100, 9)) for side in ("engine", "floor")]
        run = self.run_table(results, {"BM_A": {"max_growth": 2.5}})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertRegex(run.stdout, r"BM_A from 10 to 1000 +2\.00 +2\.5 +ok")
        run = self.run_table(results, {"BM_A": {"max_growth": 1.5}})
        self.assertEqual(run.returncode, 1)
        self.assertIn("BM_A grows by 2.00, at most 1.5 is allowed", run.stderr)

    def test_counter_has_a_limit_at_every_argument(self):
        results = [result("BM_A/10", 1, bytes=60), result("BM_A/20", 1, bytes=70)]
        run = self.run_table(results, {"BM_A": {"counter": "bytes", "max": 64}})
        self.assertEqual(run.returncode, 1)
        self.assertRegex(run.stdout, r"BM_A/10 +60 bytes +64 +ok")
        self.assertIn("BM_A/20 has 70 bytes", run.stderr)

    def test_constant_counter_may_not_differ(self):
        gates = {"BM_A": {"counter": "calls", "constant": True}}
        same = [result("BM_A/10", 1, calls=5), result("BM_A/20", 1, calls=5)]
        self.assertEqual(self.run_table(same, gates).returncode, 0)
        other = [result("BM_A/10", 1, calls=5), result("BM_A/20", 1, calls=6)]
        self.assertEqual(self.run_table(other, gates).returncode, 1)

    def test_manual_time_is_no_argument(self):
        run = self.run_table([result(f"BM_A/{side}/manual_time", 3) for side in ("engine", "floor")],
                             {"BM_A": {"max_ratio": 1}})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertRegex(run.stdout, r"BM_A +3\.00 ns")


class BenchPlot(unittest.TestCase):
    def draw(self, results, gates):
        with tempfile.TemporaryDirectory() as folder:
            data, gate_file, picture = (pathlib.Path(folder, name) for name in ("r.json", "gates.json", "plot.svg"))
            data.write_text(json.dumps({"benchmarks": results}), encoding="utf-8")
            gate_file.write_text(json.dumps(gates), encoding="utf-8")
            subprocess.run([sys.executable, TOOLS / "bench_plot.py", "--gates", gate_file, "-o", picture, data],
                           check=True)
            return xml.etree.ElementTree.parse(picture).getroot()

    @staticmethod
    def texts(picture):
        return [element.text for element in picture if element.tag.endswith("text")]

    def test_bars_stand_on_a_labelled_axis_with_their_gates(self):
        picture = self.draw([result("BM_A/engine", 3), result("BM_A/floor", 2), result("BM_B/engine", 1),
                             result("BM_B/floor", 2)], {"BM_A": {"max_ratio": 1.4}})
        texts = self.texts(picture)
        for expected in ("A", "1.50", "B", "0.50", "floor", "time of the engine / time of the floor"):
            self.assertIn(expected, texts)
        bars = [element for element in picture if element.tag.endswith("rect")][1:]
        self.assertEqual([bar.get("fill") for bar in bars], ["#d62728", "#1f77b4"])
        marks = [element for element in picture if element.get("stroke") == "#000"]
        self.assertEqual(len(marks), 1)
        self.assertAlmostEqual((float(marks[0].get("x1")) - 300) / float(bars[0].get("width")), 1.4 / 1.5, places=2)

    def test_growth_is_drawn_below_with_its_gate(self):
        results = [result(f"BM_{name}/{side}/{argument}", argument)
                   for name in "AB" for argument in (10, 100, 1000) for side in ("engine", "floor")]
        picture = self.draw(results, {"BM_A": {"max_growth": 2}})
        texts = self.texts(picture)
        for expected in ("A engine", "A floor", "gate", "1,000", "argument of the benchmark"):
            self.assertIn(expected, texts)
        self.assertNotIn("B engine", texts)
        self.assertEqual(len([element for element in picture if element.tag.endswith("polyline")]), 2)


if __name__ == "__main__":
    unittest.main()
