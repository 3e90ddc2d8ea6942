"""Runs scripts/fuzz in a tree of stand-ins: its arguments, its figures and the totals it keeps."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
NOTHING = "#!/bin/sh\nexit 0\n"
USAGE = ("usage: scripts/fuzz [SECONDS] [TARGET...]\n"
         "       scripts/fuzz --corpus DIR --hours N [TARGET...]\n")
HEAD = "target             executions   blocks features  outcome\n"
# Prints what a fuzzer prints; its arguments go into a file beside it.
TARGET = """#!/bin/sh
echo "$*" >"$0.called"
echo "#7 NEW    cov: 10 ft: 20 corp: 1/1b" >&2
echo "#56 DONE   cov: {blocks} ft: 34 corp: 2/2b" >&2
echo "stat::number_of_executed_units: 56" >&2
exit {status}
"""


class FuzzTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.tree = self.folder / "tree"
        self.write("tree/scripts/bootstrap", NOTHING)
        shutil.copy(ROOT / "scripts" / "fuzz", self.tree / "scripts")
        self.write("stand-ins/cmake", NOTHING)
        for name in ("pieces", "rows"):
            self.write_target(name)
            self.write(f"tree/build/fuzz/fuzz/{name}.arguments", "-max_len=9\nseeds of it\n")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def write_target(self, name, blocks=12, status=0):
        text = TARGET.format(blocks=blocks, status=status)
        self.write(f"tree/build/fuzz/bin/fuzz_{name}", text)

    def run_fuzz(self, *words):
        path = f"{self.folder}/stand-ins{os.pathsep}{os.environ['PATH']}"
        return subprocess.run([self.tree / "scripts" / "fuzz", *words], capture_output=True,
                              text=True, env=os.environ | {"PATH": path}, timeout=60,
                              cwd=self.folder)

    def called(self, name):
        return (self.tree / f"build/fuzz/bin/fuzz_{name}.called").read_text()

    def test_wrong_use_ends_before_anything_is_built(self):
        self.write("tree/scripts/bootstrap", "#!/bin/sh\nexit 9\n")
        together = "--corpus and --hours belong together"
        cases = [
            (["--corpus"], "--corpus takes a value, or is no option"),
            (["--corpus", "kept"], together),
            (["--hours", "1"], together),
            (["--hours", "1", "rows"], together),
            (["--corpus", "kept", "--hours", "one"], "'one' is no number of hours"),
            (["--corpus", "kept", "--hours", "-1"], "'-1' is no number of hours"),
            (["--corpus", "kept", "--hours", "1.5.2"], "'1.5.2' is no number of hours"),
            (["--corpus", "kept", "--hours", "0"], "'0' hours are less than a second"),
            (["--corpus", "kept", "--hours", "0.0001"], "'0.0001' hours are less than a second"),
            (["--nights", "2"], "--nights is no option"),
            (["--help"], "--help takes a value, or is no option"),
        ]
        for words, reason in cases:
            outcome = self.run_fuzz(*words)
            self.assertEqual((outcome.returncode, outcome.stdout, outcome.stderr),
                             (2, "", f"fuzz: {reason}\n{USAGE}"))

    def test_a_target_that_is_not_there_is_refused(self):
        for words in (["5", "row"], ["--corpus", "kept", "--hours", "1", "rows", "row"]):
            outcome = self.run_fuzz(*words)
            self.assertEqual((outcome.returncode, outcome.stderr),
                             (2, "fuzz: no target is called row\n"))
        self.assertFalse((self.folder / "kept").exists())

    def test_each_target_gets_the_seconds(self):
        outcome = self.run_fuzz("5")
        rows = ("pieces                     56       12       34  clean\n"
                "rows                       56       12       34  clean\n")
        self.assertEqual(outcome.stderr, "")
        begin, table = outcome.stdout.split("\n\n", 1)
        self.assertEqual(sorted(begin.split("\n")),
                         ["fuzzing pieces for 5 s", "fuzzing rows for 5 s"])
        self.assertEqual(table, f"this run:\n{HEAD}{rows}\nall runs:\n{HEAD}{rows}")
        self.assertEqual(self.called("rows"),
                         "-max_total_time=5 -timeout=10 -rss_limit_mb=2048 -entropic=0 -reload=0 "
                         "-print_final_stats=1 -artifact_prefix=build/fuzz/findings/rows/ "
                         "build/fuzz/corpus/rows -max_len=9 seeds of it\n")

    def test_a_finding_fails_though_the_targets_behind_it_are_fuzzed(self):
        self.write_target("pieces", status=77)
        outcome = self.run_fuzz("5")
        self.assertEqual(outcome.returncode, 1)
        self.assertIn("pieces                     56       12       34  FOUND\n"
                      "rows                       56       12       34  clean\n", outcome.stdout)

    def test_a_corpus_is_kept_where_it_is_told_from_the_folder_of_the_call(self):
        self.assertEqual(self.run_fuzz("--corpus", "kept", "--hours", "1", "rows").returncode, 0)
        kept = self.folder.resolve() / "kept"
        self.assertIn(f" -artifact_prefix={kept}/findings/rows/ {kept}/corpus/rows ",
                      self.called("rows"))
        self.assertEqual(sorted(path.name for path in kept.iterdir()),
                         ["corpus", "findings", "rows.log", "totals"])

    def test_the_time_of_two_is_shared_out_by_weight(self):
        self.assertEqual(self.run_fuzz("--corpus", "kept", "--hours", "0.5").returncode, 0)
        seconds = [int(re.search("-max_total_time=([0-9]+)", self.called(name))[1])
                   for name in ("pieces", "rows")]
        self.assertIn(seconds[0], range(1795, 1801))  # no more than until the end
        self.assertEqual(seconds[1], 720)

    def test_a_run_is_added_to_the_totals(self):
        words = ["--corpus", "kept", "--hours", "1", "rows"]
        self.run_fuzz(*words)
        self.write_target("rows", blocks=13)
        outcome = self.run_fuzz(*words)
        self.assertEqual((outcome.returncode, outcome.stderr), (0, ""))
        self.assertEqual(outcome.stdout.split("\n", 1)[1], "\nthis run:\n" + HEAD +
                         "rows                       56       13       34  clean\n"
                         "\nall runs:\n" + HEAD +
                         "rows                      112       13       34  clean\n")
        lines = (self.folder / "kept" / "totals").read_text().splitlines()
        self.assertEqual(len(lines), 2)
        self.assertRegex(lines[0], r"^\d{4}-\d\d-\d\d rows 56 12 34 3(600|59\d) clean$")

    def test_a_finding_fails_the_run_that_has_it_and_no_later_one(self):
        words = ["--corpus", "kept", "--hours", "1", "rows"]
        self.write_target("rows", status=77)
        outcome = self.run_fuzz(*words)
        self.assertEqual(outcome.returncode, 1)
        self.assertIn("rows                       56       12       34  FOUND\n", outcome.stdout)
        self.write_target("rows")
        outcome = self.run_fuzz(*words)
        self.assertEqual(outcome.returncode, 0)
        self.assertIn("rows                      112       12       34  FOUND\n", outcome.stdout)


if __name__ == "__main__":
    unittest.main()
