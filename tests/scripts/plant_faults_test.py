"""Runs scripts/plant-faults with the program, and with programs that tell too little and too much."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "plant-faults"


def plant(*arguments):
    """The exit status and the output of the script."""
    run = subprocess.run([sys.executable, "-B", SCRIPT, *arguments], capture_output=True, text=True)
    return run.returncode, run.stdout + run.stderr


class PlantFaultsTest(unittest.TestCase):
    def pretend(self, *rules):
        """A program that tells these rules of any file, and nothing else."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        findings = ", ".join(f'{{"id": "{rule}", "severity": "error"}}' for rule in rules)
        path = Path(folder.name) / "program"
        path.write_text(f"#!/bin/sh\necho '{{\"diagnostics\": [{findings}]}}'\n", encoding="utf-8")
        path.chmod(0o755)
        return path

    @unittest.skipUnless("IBIS_LOAD_PROGRAM" in os.environ, "no program was given")
    def test_each_fault_is_found_by_its_own_rule_alone(self):
        status, text = plant()
        self.assertRegex(text, r"\n\d+ faults planted, 0 missed or told by other rules too\n\Z")
        self.assertEqual(status, 0, text)

    def test_a_fault_that_is_missed_fails(self):
        self.assertEqual(plant("--program", self.pretend(), "syntax-missing-end"),
                         (1, "FAILED syntax-missing-end: nothing told\n"
                             "1 faults planted, 1 missed or told by other rules too\n"))

    def test_a_fault_that_another_rule_tells_of_too_fails(self):
        program = self.pretend("table-outlier", "syntax-missing-end")
        self.assertEqual(plant("--program", program, "syntax-missing-end"),
                         (1, "FAILED syntax-missing-end: syntax-missing-end, table-outlier\n"
                             "1 faults planted, 1 missed or told by other rules too\n"))

    def test_a_fault_that_its_own_rule_alone_tells_of_passes(self):
        program = self.pretend("syntax-missing-end")
        self.assertEqual(plant("--program", program, "syntax-missing-end"),
                         (0, "found  syntax-missing-end: syntax-missing-end\n"
                             "1 faults planted, 0 missed or told by other rules too\n"))


if __name__ == "__main__":
    unittest.main()
