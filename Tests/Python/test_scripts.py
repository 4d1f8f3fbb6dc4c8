"""Every script of Docs/python, run as its first lines say."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from rig import CAPTURES

SCRIPTS = pathlib.Path(os.environ.get("KA_SOURCE", "../.."), "Docs", "python")

# What a run must print, besides ending well: facts of the captures that are known otherwise.
EXPECTED = {
    "02_look_around": ["clip '01_01': frames 0 to", "Hips"],
    "03_samples": [" covers "],
    "04_positions": [" travels "],
    "05_keys": [" keys, "],
    "06_build": ["at frame 25 the door stands at 90.0 degrees"],
    "07_play": ["event 'top' at frame 5", "frame 10", "the clip has ended"],
    "08_errors": ["line 8: ", "OpenError: ", "UsageError: ", "RefusedError: ", "GoneError: ", "ClosedError: "],
    "09_compare": ["0 things wrong", "values compared"],
}


class Scripts(unittest.TestCase):
    def run_script(self, name: str) -> None:
        script = next(SCRIPTS.glob(f"{name}*.py"))
        usage = script.read_text().split('"""')[1]
        with tempfile.TemporaryDirectory() as folder:
            given = {"CAPTURE": str(CAPTURES / "01_01.bvh"), "FOLDER": folder}
            arguments = [given[word] for word in usage.split() if word in given]
            ran = subprocess.run([sys.executable, "-X", "dev", script, *arguments], capture_output=True, text=True)
            self.assertEqual(ran.returncode, 0, ran.stderr)
            for text in EXPECTED.get(script.stem, []):
                self.assertIn(text, ran.stdout)
            if name.startswith("01"):
                self.assertEqual({path.name for path in pathlib.Path(folder).iterdir()},
                                 {"curves.png", "motion.osg", "motion.xml"})

    def test_every_script_is_run_and_listed(self):
        names = sorted(path.name for path in SCRIPTS.glob("*.py"))
        self.assertEqual(len(names), 10)
        listed = (SCRIPTS / "README.md").read_text()
        for name in names:
            self.assertIn(f"[{name}]({name})", listed)
            self.assertTrue(name.startswith("10") or hasattr(self, f"test_{name[:-3]}"), name)


def add_tests() -> None:
    for path in sorted(SCRIPTS.glob("0*.py")):
        setattr(Scripts, f"test_{path.stem}", lambda self, name=path.stem: self.run_script(name))


add_tests()

if __name__ == "__main__":
    unittest.main()
