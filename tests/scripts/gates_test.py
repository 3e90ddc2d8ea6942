"""Runs .ci/run in a tree of stand-ins, and holds what it refuses and what it leaves out."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
TESTS = ROOT / "tests"
NOTHING = "#!/bin/sh\nexit 0\n"
LEFT_OUT = "=== left out: corpus (IBIS_CORPUS is not set)"


class GatesTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.tree = self.folder / "tree"
        (self.tree / ".ci").mkdir(parents=True)
        shutil.copy(ROOT / ".ci" / "run", self.tree / ".ci")
        self.write("tree/scripts/test", '#!/bin/sh\nenv >"$(dirname "$0")/../environment"\n')
        for name in ("bootstrap", "check-includes", "check-guides", "test-package", "test-sarif",
                     "fuzz"):
            self.write(f"tree/scripts/{name}", NOTHING)
        for name in ("cmake", "ctest", "git", "clang-format-14"):
            self.write(f"stand-ins/{name}", NOTHING)
        self.write("tree/examples/one.ibs", "")
        for preset in ("release", "asan"):
            self.write(f"tree/build/{preset}/bin/ibis-load", NOTHING)
        self.write_thread_tests(2)
        self.write("shared/corpus/check", f"#!/bin/sh\ntouch {self.folder}/was-run\n")
        self.write("shared/corpus/files/one.ibs", "")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def write_thread_tests(self, count):
        text = f"[==========] Running {count} tests from 1 test suite."
        self.write("tree/build/tsan/bin/robustness_tests", f'#!/bin/sh\necho "{text}"\n')

    def run_gates(self, **variables):
        environment = {name: text for name, text in os.environ.items() if name != "IBIS_CORPUS"}
        environment["PATH"] = f"{self.folder}/stand-ins{os.pathsep}{environment['PATH']}"
        return subprocess.run([self.tree / ".ci" / "run"], capture_output=True, text=True,
                              env=environment | variables, timeout=60)

    def test_neither_a_filter_nor_a_rewriting_run_reaches_the_tests(self):
        names = ("GTEST_FILTER", "GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX", "IBIS_REWRITE_GOLDEN")
        outcome = self.run_gates(**{name: "1" for name in names})
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        reached = (self.tree / "environment").read_text().splitlines()
        self.assertEqual([line for line in reached if line.startswith(names)], [])

    def test_nothing_outside_the_tree_is_run_unasked(self):
        outcome = self.run_gates()
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertEqual(outcome.stdout.splitlines()[-3:], [LEFT_OUT, "", "=== all gates passed"])
        self.assertFalse((self.folder / "was-run").exists())

    def test_the_corpus_that_the_variable_names_is_run(self):
        self.write_corpus()
        outcome = self.run_gates(IBIS_CORPUS=str(self.folder / "shared" / "corpus"))
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertTrue((self.folder / "was-run").exists())
        self.assertNotIn(LEFT_OUT, outcome.stdout)
        self.assertEqual(outcome.stdout.splitlines()[-1], "=== all gates passed")

    def write_corpus(self):
        for name in "29le010 at16245 bug82 cmos_buffer hct1g08 ideal_driver top x980xx".split():
            self.write(f"shared/corpus/files/{name}.ibs", "")

    def test_every_command_reads_the_corpus_under_the_sanitizers(self):
        self.write_corpus()
        self.write("tree/build/asan/bin/ibis-load", f'#!/bin/sh\necho "$@" >>{self.folder}/asked\n')
        outcome = self.run_gates(IBIS_CORPUS=str(self.folder / "shared" / "corpus"))
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        corpus = f"{self.folder}/shared/corpus/files/"
        asked = [line for line in (self.folder / "asked").read_text().splitlines()
                 if f"{corpus}one.ibs" in line]
        asked = [" ".join(word for word in line.split() if not word.startswith("/")) for line in asked]
        expected = ["list", "list --json", "show", "show --json", "check", "check --json",
                    "check --sarif"]
        for mode in ("model", "package", "script", "symbol"):
            expected += [f"convert -m {mode} -o -q", f"convert -m {mode} -o -q -k --as-version 4.2"]
        self.assertEqual(asked, expected)

    def test_a_finding_of_a_sanitizer_fails(self):
        self.write_corpus()
        self.write("tree/build/asan/bin/ibis-load",
                   '#!/bin/sh\n[ "$3" != --sarif ] || { echo finding >&2; exit 99; }\n')
        outcome = self.run_gates(IBIS_CORPUS=str(self.folder / "shared" / "corpus"))
        first = f"{self.folder}/shared/corpus/files/29le010.ibs"
        self.assertEqual(outcome.returncode, 1)
        self.assertEqual(outcome.stderr, f"finding\nstatus 99: check {first} --sarif\n"
                                         "=== failed: corpus under the sanitizers\n")

    def test_a_gate_without_a_test_of_threads_fails(self):
        self.write_thread_tests(0)
        outcome = self.run_gates()
        self.assertEqual(outcome.returncode, 1)
        self.assertEqual(outcome.stderr,
                         "no test of threads was run\n=== failed: thread sanitizer\n")


@unittest.skipUnless(shutil.which("cmake"), "there is no cmake")
class TestGroupsTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def configure(self, lines):
        head = "cmake_minimum_required(VERSION 3.25)\nproject(groups LANGUAGES NONE)\n"
        head += f"enable_testing()\ninclude({TESTS}/TestGroups.cmake)\n"
        (self.folder / "CMakeLists.txt").write_text(head + lines)
        return subprocess.run(["cmake", "-S", self.folder, "-B", self.folder / "build"],
                              capture_output=True, text=True)

    def write(self, name):
        (self.folder / name).parent.mkdir(exist_ok=True)
        (self.folder / name).write_text("")

    def test_a_group_without_tests_ends_the_configuration(self):
        self.write("empty/helper.cpp")
        outcome = self.configure("collect_tests(list empty)\n")
        self.assertNotEqual(outcome.returncode, 0)
        self.assertIn(f"there is no test in {self.folder}/empty", outcome.stderr.replace("\n  ", " "))

    def test_a_group_holds_all_of_its_sources(self):
        for name in ("one/a_test.cpp", "one/helper.cpp", "two/b_test.cpp"):
            self.write(name)
        outcome = self.configure("collect_tests(list one two)\nlist(SORT list)\n"
                                 'file(WRITE ${CMAKE_SOURCE_DIR}/list "${list}")\n')
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertEqual((self.folder / "list").read_text().split(";"),
                         [str(self.folder / name)
                          for name in ("one/a_test.cpp", "one/helper.cpp", "two/b_test.cpp")])

    def test_a_program_that_ran_no_test_fails(self):
        lines = "".join(
            f'add_test(NAME {name} COMMAND ${{CMAKE_COMMAND}} -E echo "Running {count} tests")\n'
            f"refuse_no_tests({name})\n" for name, count in (("none", 0), ("ten", 10)))
        self.assertEqual(self.configure(lines).returncode, 0)
        for name, status in (("none", 8), ("ten", 0)):
            outcome = subprocess.run(["ctest", "--tests-regex", name], cwd=self.folder / "build",
                                     capture_output=True, text=True)
            self.assertEqual(outcome.returncode, status, outcome.stdout)


if __name__ == "__main__":
    unittest.main()
