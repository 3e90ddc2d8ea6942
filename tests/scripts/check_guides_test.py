"""Plants wrong names in a small guide and holds what scripts/check-guides prints against texts."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

GUIDE = """# Architecture

Outside the lists `nothing` is looked for.

- `nowhere/at_all.h`

## Where to add

### A check

- `src/checks.cpp`: a row in `table`, and
  a call of `run`.
- A file of its own in `src/`.

## Growth

- `nowhere/at_all.h`
"""


def check(*arguments):
    """The exit status and the output of the script."""
    script = PROJECT / "scripts" / "check-guides"
    run = subprocess.run([sys.executable, "-B", script, *arguments], capture_output=True, text=True)
    return run.returncode, run.stdout + run.stderr


class CheckGuidesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "docs").mkdir()
        (self.root / "src").mkdir()
        (self.root / "src/checks.cpp").write_text("int table[1];\nvoid run();\n", encoding="utf-8")

    def expect(self, guide, status, *lines):
        (self.root / "docs/architecture.md").write_text(guide, encoding="utf-8")
        self.assertEqual(check("--root", self.root), (status, "\n".join(lines) + "\n"))

    def test_the_project_itself_passes(self):
        status, text = check()
        self.assertRegex(text, r"\A\d+ lists, \d+ names, 0 missing\n\Z")
        self.assertEqual(status, 0)

    def test_good_names_pass(self):
        self.expect(GUIDE, 0, "1 lists, 4 names, 0 missing")

    def test_a_wrong_file(self):
        self.expect(GUIDE.replace("src/checks.cpp", "src/check.cpp"), 1,
                    "docs/architecture.md:11: no file src/check.cpp")

    def test_a_wrong_identifier(self):
        self.expect(GUIDE.replace("`table`", "`tables`"), 1,
                    "docs/architecture.md:11: no tables in src/checks.cpp")

    def test_a_part_of_an_identifier(self):
        self.expect(GUIDE.replace("`run`", "`ru`"), 1,
                    "docs/architecture.md:11: no ru in src/checks.cpp")

    def test_an_identifier_without_a_file(self):
        self.expect(GUIDE.replace("`src/checks.cpp`: ", ""), 1,
                    "docs/architecture.md:11: no file before table",
                    "docs/architecture.md:11: no file before run")

    def test_an_identifier_of_a_folder(self):
        self.expect(GUIDE.replace("`src/`", "`src/`: `run`"), 1,
                    "docs/architecture.md:13: src/ is a folder, which holds no run")

    def test_an_item_without_names(self):
        self.expect(GUIDE.replace("in `src/`", "anywhere"), 1,
                    "docs/architecture.md:13: names nothing")

    def test_a_guide_without_lists(self):
        self.expect("# Architecture\n", 1,
                    'docs/architecture.md: no list in a section "Where to add"')


if __name__ == "__main__":
    unittest.main()
