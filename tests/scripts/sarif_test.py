"""Runs scripts/test-sarif with stand-ins for npm, and holds what it leaves out and what it refuses."""
import importlib.util
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "test-sarif"
PACK = """#!{python}
import io, sys, tarfile
with tarfile.open("schema.tgz", "w:gz") as archive:
    entry = tarfile.TarInfo("package/lib/schemas/sarif-2.1.0-rtm.5.json")
    text = {schema!r}.encode()
    entry.size = len(text)
    archive.addfile(entry, io.BytesIO(text))
"""
HAS_SCHEMAS = importlib.util.find_spec("jsonschema") is not None


class SarifTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write_npm(self, text):
        path = self.folder / "npm"
        path.write_text(text, encoding="utf-8")
        path.chmod(0o755)

    def run_script(self):
        """The exit status, standard output and standard error; npm is the stand-in or absent."""
        program = os.environ.get("IBIS_LOAD_PROGRAM", "absent")
        run = subprocess.run([sys.executable, "-B", SCRIPT, program], capture_output=True, text=True,
                             env=os.environ | {"PATH": str(self.folder)}, timeout=120)
        return run.returncode, run.stdout, run.stderr

    def test_without_npm_it_is_left_out(self):
        self.assertEqual(self.run_script(), (0, "left out: SARIF (no npm)\n", ""))

    def test_what_cannot_be_fetched_is_left_out(self):
        expected = (0, "left out: SARIF (the schema could not be fetched)\n", "")
        for text in ("#!/bin/sh\nexit 1\n", "#!/bin/sh\nexit 0\n"):
            self.write_npm(text)
            self.assertEqual(self.run_script(), expected)

    @unittest.skipUnless(HAS_SCHEMAS and "IBIS_LOAD_PROGRAM" in os.environ,
                         "no jsonschema, or no program was given")
    def test_each_kind_of_result_and_of_name_is_held_against_the_schema(self):
        self.write_npm(PACK.format(python=sys.executable, schema='{"required": ["version"]}'))
        status, out, err = self.run_script()
        self.assertEqual((status, err), (0, ""))
        self.assertRegex(out, r"\Aexamples: \d+ results are valid\n"
                              r"planted faults: 25 results are valid\n\Z")

    @unittest.skipUnless(HAS_SCHEMAS and "IBIS_LOAD_PROGRAM" in os.environ,
                         "no jsonschema, or no program was given")
    def test_what_does_not_validate_fails(self):
        self.write_npm(PACK.format(python=sys.executable, schema='{"required": ["absent"]}'))
        self.assertEqual(self.run_script(),
                         (1, "", "examples: : 'absent' is a required property\n"))


if __name__ == "__main__":
    unittest.main()
