"""Runs the command lines of the README, and holds what it quotes against what the program writes."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
PROGRAM = os.environ.get("IBIS_LOAD_PROGRAM")
BLOCK = re.compile(r"^```\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROGRAM_OF_THE_README = "build/release/bin/ibis-load"


def blocks():
    return BLOCK.findall((ROOT / "README.md").read_text(encoding="utf-8"))


def command_lines():
    """The lines that a reader can type as they stand: no brackets of a synopsis, no placeholder."""
    for block in blocks():
        for line in block.splitlines():
            if re.match(r"(ibis-load |echo .*ibis-load)", line) and not re.search(r"\[-|\b(FILE|RULE)\b|<", line):
                yield line


@unittest.skipUnless(PROGRAM, "IBIS_LOAD_PROGRAM does not name the program")
class ReadmeTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        shutil.copytree(ROOT / "examples", self.folder / "examples")
        (self.folder / "vendor").mkdir()
        for example in (ROOT / "examples").glob("*.ibs"):
            shutil.copy(example, self.folder / "vendor")

    def run_line(self, line):
        line = line.replace(PROGRAM_OF_THE_README, "ibis-load").replace('"/tmp"', '"."')
        path = f"{Path(PROGRAM).parent}{os.pathsep}{os.environ['PATH']}"
        return subprocess.run(line, shell=True, cwd=self.folder, env={**os.environ, "PATH": path},
                              text=True, capture_output=True)

    def test_every_command_line_works(self):
        lines = list(command_lines())
        kinds = {re.search(r"ibis-load (\w+)", line)[1] for line in lines}
        self.assertLessEqual({"convert", "call"}, kinds)
        for line in lines:
            with self.subTest(line):
                result = self.run_line(line)
                self.assertEqual(result.returncode, 0, result.stderr)

    def test_the_folder_of_libraries_has_each_file(self):
        self.run_line("ibis-load convert vendor -j 0 -o libraries")
        for example in (ROOT / "examples").glob("*.ibs"):
            self.assertTrue(list((self.folder / "libraries" / example.stem).glob("*.lb")), example.name)

    def test_the_quoted_library_is_what_the_program_writes(self):
        self.assertEqual(self.run_line("ibis-load convert examples/push_pull_buffer.ibs").returncode, 0)
        written = (self.folder / "EX3214.lb").read_text(encoding="utf-8")
        quoted = next(block for block in blocks() if block.startswith(".SUBCKT"))
        position = 0
        for part in quoted.split("...\n"):
            position = written.find(part, position)
            self.assertGreaterEqual(position, 0, part)

    def test_the_help_knows_every_option(self):
        for block in blocks():
            for synopsis in re.findall(r"^ibis-load (\w+) (.*(?:\n .*)*)", block, re.MULTILINE):
                told = self.run_line(f"ibis-load {synopsis[0]} --help").stdout
                for option in re.findall(r"(?<![\w-])--?[a-z][\w-]*", synopsis[1]):
                    self.assertRegex(told, rf"(?m)^\s+(-\w,)?{re.escape(option)}\b", synopsis[0])


if __name__ == "__main__":
    unittest.main()
