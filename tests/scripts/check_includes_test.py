"""Plants faults in a small tree and holds what scripts/check-includes prints against whole texts."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]


def check(*arguments):
    """The exit status and the output of the script."""
    script = PROJECT / "scripts" / "check-includes"
    run = subprocess.run([sys.executable, "-B", script, *arguments], capture_output=True, text=True)
    return run.returncode, run.stdout + run.stderr


class CheckIncludesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def plant(self, name, *lines):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(lines) + "\n", encoding="utf-8")

    def expect(self, status, *lines):
        self.assertEqual(check("--root", self.root), (status, "\n".join(lines) + "\n"))

    def test_the_project_itself_passes(self):
        status, text = check()
        self.assertRegex(text, r"\A\d+ rooms, \d+ arrows, 0 arrows up, 0 circles\n\Z")
        self.assertEqual(status, 0)

    def test_arrows_down_and_on_one_floor_pass(self):
        self.plant("include/ibis/pin.h")
        self.plant("src/model/table.h", '#include "ibis/pin.h"')
        self.plant("src/component/pins.h", "#include <vector>", '#include "model/table.h"')
        self.plant("src/component/pins.cpp", '#include "component/pins.h"')
        self.expect(0, "3 rooms, 2 arrows, 0 arrows up, 0 circles")

    def test_an_arrow_up_between_subsystems(self):
        self.plant("src/output/table.h")
        self.plant("src/model/pass.cpp", "#include <vector>", "", '#include "output/table.h"')
        self.expect(1, "src/model/pass.cpp:3 includes src/output/table.h: "
                       "arrow up from floor 4 (src/model) to floor 6 (src/output)")

    def test_an_arrow_up_into_the_room_around(self):
        self.plant("src/reader/scanner.h")
        self.plant("src/reader/text/buffer.h", '#include "../scanner.h"')
        self.expect(1, "src/reader/text/buffer.h:1 includes src/reader/scanner.h: "
                       "arrow up from floor 1 (src/reader/text) to floor 3 (src/reader)")

    def test_an_arrow_up_out_of_the_public_headers(self):
        self.plant("src/reader/text/buffer.h")
        self.plant("include/ibis/file.h", "#include <reader/text/buffer.h>")
        self.expect(1, "include/ibis/file.h:1 includes src/reader/text/buffer.h: "
                       "arrow up from floor 0 (include/ibis) to floor 1 (src/reader/text)")

    def test_a_circle_of_two_rooms(self):
        self.plant("src/component/first.h", '#include "package/second.h"')
        self.plant("src/package/second.h")
        self.plant("src/package/third.cpp", '#include "component/fourth.h"')
        self.plant("src/component/fourth.h")
        self.expect(1, "circle of rooms: src/component -> src/package -> src/component",
                       "  src/component/first.h:1 includes src/package/second.h",
                       "  src/package/third.cpp:1 includes src/component/fourth.h")

    def test_a_circle_of_three_rooms(self):
        self.plant("src/model/first.h", '#include "package/second.h"')
        self.plant("src/package/second.h")
        self.plant("src/package/third.h", '#include "component/fourth.h"')
        self.plant("src/component/fourth.h")
        self.plant("src/component/fifth.h", '#include "model/sixth.h"')
        self.plant("src/model/sixth.h")
        self.expect(1, "circle of rooms: "
                       "src/component -> src/model -> src/package -> src/component",
                       "  src/component/fifth.h:1 includes src/model/sixth.h",
                       "  src/model/first.h:1 includes src/package/second.h",
                       "  src/package/third.h:1 includes src/component/fourth.h")

    def test_a_circle_of_units_inside_a_room(self):
        self.plant("src/model/table.h")
        self.plant("src/model/table.cpp", '#include "model/table.h"', '#include "model/pass.h"')
        self.plant("src/model/pass.h", '#include "model/table.h"')
        self.expect(1, "circle of units: src/model/pass -> src/model/table -> src/model/pass",
                       "  src/model/pass.h:1 includes src/model/table.h",
                       "  src/model/table.cpp:2 includes src/model/pass.h")

    def test_an_unknown_room(self):
        self.plant("src/cellar/wine.h")
        self.plant("src/model/table.h", '#include "cellar/wine.h"')
        self.expect(1, "src/cellar: unknown room; give it a floor in scripts/check-includes")

    def test_support_from_the_core(self):
        self.plant("src/support/files.h")
        self.plant("src/reader/text/buffer.cpp", '#include "support/files.h"')
        self.expect(1, "src/reader/text/buffer.cpp:1 includes src/support/files.h: "
                       "only src/host and cli may include src/support")

    def test_support_from_a_room_inside_host(self):
        self.plant("src/support/files.h")
        self.plant("src/host/diagnostics/messages.h", '#include "support/files.h"')
        self.expect(1, "src/host/diagnostics/messages.h:1 includes src/support/files.h: "
                       "only src/host and cli may include src/support")

    def test_support_from_its_users(self):
        self.plant("src/support/files.h")
        self.plant("src/support/files.cpp", '#include "support/files.h"')
        self.plant("src/host/load.cpp", '#include "support/files.h"')
        self.plant("cli/plugin.h", '#include "support/files.h"')
        self.expect(0, "3 rooms, 2 arrows, 0 arrows up, 0 circles")

    def test_the_program_from_src(self):
        self.plant("cli/messages.def")
        self.plant("src/host/load.cpp", '#include "messages.def"')
        self.expect(1, "src/host/load.cpp:1 includes cli/messages.def: src includes nothing of cli")

    def test_a_tree_without_sources(self):
        self.expect(1, "no source found")

    def test_an_unknown_option_is_a_usage_error(self):
        self.assertEqual(check("--floor")[0], 2)


if __name__ == "__main__":
    unittest.main()
