"""Reads the program, the plug-in and the support library for what a fault of memory runs into."""
import os
import platform
import re
import shutil
import subprocess
import unittest
from pathlib import Path

FILES = {name: os.environ.get(f"IBIS_LOAD_{name.upper()}")
         for name in ("program", "plugin", "support")}
IS_OPTIMISED = os.environ.get("IBIS_LOAD_IS_OPTIMISED") == "1"
ENDBR64 = b"\xf3\x0f\x1e\xfa"


def readelf(option, name):
    return subprocess.run(["readelf", option, "--wide", FILES[name]], capture_output=True,
                          check=True, text=True, env={**os.environ, "LC_ALL": "C"}).stdout


def imported(name):
    """The names of other libraries' functions, without their versions."""
    rows = [line.split() for line in readelf("--dyn-syms", name).splitlines() if " UND " in line]
    return {row[7].split("@")[0] for row in rows if len(row) > 7}


@unittest.skipUnless(all(FILES.values()) and shutil.which("readelf"),
                     "there is no readelf, or the variables name no files")
class HardeningTest(unittest.TestCase):
    def test_addresses_are_bound_at_the_start_and_read_only_from_then_on(self):
        for name in FILES:
            with self.subTest(name):
                self.assertRegex(readelf("--dynamic", name), r"\(FLAGS_1\) +Flags:.*\bNOW\b")
                self.assertIn("GNU_RELRO", readelf("--segments", name))

    def test_the_program_may_lie_anywhere(self):
        self.assertRegex(readelf("--dynamic", "program"), r"\(FLAGS_1\) +Flags:.*\bPIE\b")

    def test_no_stack_holds_code(self):
        for name in FILES:
            with self.subTest(name):
                stacks = re.findall(r"GNU_STACK .* ([RWE]+) +0x", readelf("--segments", name))
                self.assertEqual(stacks, ["RW"])

    def test_stacks_are_watched(self):
        for name in FILES:
            with self.subTest(name):
                self.assertIn("__stack_chk_fail", imported(name))

    @unittest.skipUnless(IS_OPTIMISED, "not an optimised build")
    def test_calls_of_the_c_library_know_the_room_that_they_have(self):
        for name in ("program", "plugin"):
            with self.subTest(name):
                checked = {each for each in imported(name) if re.fullmatch(r"__\w+_chk", each)}
                self.assertIn("__snprintf_chk", checked)

    @unittest.skipUnless(platform.machine() == "x86_64", "another processor")
    def test_functions_begin_where_an_indirect_call_may_lead(self):
        for name in FILES:
            with self.subTest(name):
                functions = re.findall(r" FUNC .* (?!UND)\d+ ", readelf("--symbols", name))
                marks = Path(FILES[name]).read_bytes().count(ENDBR64)
                self.assertGreater(marks, len(functions) / 2)

    def test_libraries_are_looked_for_in_no_folder_but_their_own(self):
        folders = {name: re.findall(r"\((?:RUNPATH|RPATH)\) .*\[(.*)\]", readelf("--dynamic", name))
                   for name in FILES}
        self.assertRegex(folders["program"].pop(), r"^\$ORIGIN/\.\./lib[^:]*/ibis-load$")
        self.assertEqual(folders, {"program": [], "plugin": ["$ORIGIN"], "support": []})


if __name__ == "__main__":
    unittest.main()
