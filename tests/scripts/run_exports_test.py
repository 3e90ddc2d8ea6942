"""Runs scripts/run-exports with simulators that fail in different ways, and with a real one."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = os.environ.get("IBIS_LOAD_PROGRAM")

MODEL = """[IBIS Ver] 4.2
[Component] part
[Package]
R_pkg 1 NA NA
L_pkg 1n NA NA
C_pkg 1p NA NA
[Pin] signal_name model_name
1 a rx
[Model] rx
Model_type Input
Vinl = 1
Vinh = 2
C_comp 2p NA NA
[Voltage Range] 3 NA NA
[End]
"""


@unittest.skipUnless(PROGRAM, "IBIS_LOAD_PROGRAM does not name the program")
class RunExportsTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "part.ibs").write_text(MODEL, encoding="utf-8")
        (self.folder / "bin").mkdir()

    def run_script(self, *arguments):
        path = f"{self.folder / 'bin'}{os.pathsep}{os.environ['PATH']}"
        return subprocess.run([sys.executable, "-B", ROOT / "scripts/run-exports", "--program", PROGRAM,
                               *arguments, self.folder],
                              capture_output=True, text=True, check=False,
                              env={**os.environ, "PATH": path})

    def plant_simulator(self, body):
        fake = self.folder / "bin" / "ngspice"
        fake.write_text("#!/bin/sh\n" + body, encoding="utf-8")
        fake.chmod(0o755)

    def expect_each(self, run, fault):
        names = [f"{name}_{corner}" for name in ("rx", "part") for corner in ("typ", "min", "max")]
        lines = [f"part.ibs: {name}: {fault}" for name in names]
        self.assertEqual(run.stdout.splitlines(), lines + ["0 of 6 subcircuits load and run"])
        self.assertEqual(run.returncode, 1)

    def test_words_of_the_simulator_are_told(self):
        self.plant_simulator("echo 'doAnalyses: TRAN:  Timestep too small; time = 1'\n")
        self.expect_each(self.run_script(), "doAnalyses: TRAN:  Timestep too small; time = 1")

    def test_a_run_that_saves_nothing_has_failed(self):
        self.plant_simulator("exit 0\n")
        self.expect_each(self.run_script(), "nothing was saved")

    def test_a_run_that_hangs_is_ended(self):
        self.plant_simulator("exec sleep 60\n")
        self.expect_each(self.run_script("--timeout", "0.1", "-j", "6"), "not done after 0.1 s")

    def test_a_run_that_ends_early_has_failed(self):
        self.plant_simulator("printf 'No. Variables: 1\\nBinary:\\n\\0\\0\\0\\0\\0\\0\\0\\0' >$4\n")
        self.expect_each(self.run_script(), "ended at 0 s of 5.4e-08 s")

    def test_a_file_that_is_not_exported_is_told(self):
        (self.folder / "part.ibs").write_text("[IBIS Ver] 4.2\n[End]\n", encoding="utf-8")
        run = self.run_script()
        self.assertEqual(run.stdout.splitlines()[-1], "0 of 0 subcircuits load and run")
        self.assertIn("part.ibs: component not exported: The file has no component", run.stdout)
        self.assertEqual(run.returncode, 1)

    @unittest.skipUnless(shutil.which("ngspice"), "there is no ngspice")
    def test_what_runs_is_counted(self):
        run = self.run_script()
        self.assertEqual(run.stdout, "6 of 6 subcircuits load and run\n")
        self.assertEqual(run.returncode, 0)


if __name__ == "__main__":
    unittest.main()
