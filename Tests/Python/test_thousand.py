"""A folder of captures on two workers: one of them killed in the middle, a broken file, and a second run."""

import csv
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import numpy as np
import zarr

import kaanimation

SCRIPT = pathlib.Path(os.environ.get("KA_SOURCE", "../.."), "Docs", "python", "10_thousand_motions.py")


def workers_of(process: int) -> list[int]:
    """The worker processes that a run has started and that still run."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        try:
            status = (entry / "stat").read_text()
            if int(status.rsplit(")", 1)[1].split()[1]) == process and b"spawn_main" in (entry / "cmdline").read_bytes():
                found.append(int(entry.name))
        except (OSError, ValueError, IndexError):
            continue
    return sorted(found)


class Thousand(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.captures, self.results = pathlib.Path(folder.name, "captures"), pathlib.Path(folder.name, "results")
        self.captures.mkdir()

    def write(self, name: str, frames: int) -> None:
        """A capture whose arm turns by one degree a frame and whose hand shakes."""
        text = kaanimation.example().read_text()
        head, _ = text.split("MOTION")
        rows = [f"{i % 90} 0 0 {20 * np.sin(i / 7):.4f} 0 0" for i in range(frames)]
        (self.captures / name).write_text(f"{head}MOTION\nFrames: {frames}\nFrame Time: 0.04\n" + "\n".join(rows) + "\n")

    def start(self) -> subprocess.Popen:
        return subprocess.Popen([sys.executable, SCRIPT, self.captures, self.results, "--workers", "2"],
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def table(self) -> dict[str, dict[str, str]]:
        with open(self.results / "table.csv", newline="") as file:
            return {row["capture"]: row for row in csv.DictReader(file)}

    def test_a_worker_dies_a_file_is_broken_and_the_rest_is_done(self):
        for number in range(24):
            self.write(f"walk{number:02}.bvh", 400 + number)
        (self.captures / "broken.bvh").write_text("HIERARCHY\nROOT Hips\n{\n")
        run = self.start()
        deadline = time.monotonic() + 240
        while not list(self.results.glob("*.zarr")) and run.poll() is None and time.monotonic() < deadline:
            time.sleep(0.02)
        victims = workers_of(run.pid)
        self.assertTrue(victims, "no worker was found to kill")
        os.kill(victims[-1], signal.SIGKILL)
        output, errors = run.communicate(timeout=240)
        self.assertIn("25 of 25 captures converted", output, errors)
        self.assertEqual(run.returncode, 1, "a broken capture is told")

        table = self.table()
        self.assertEqual(table["broken.bvh"]["state"], "unreadable")
        self.assertIn("broken.bvh", table["broken.bvh"]["findings"])
        for number in range(24):
            row = table[f"walk{number:02}.bvh"]
            self.assertEqual(row["state"], "done", row)
            array = zarr.open_array(str(self.results / f"walk{number:02}.zarr"), mode="r")
            # From the first frame to the last at 25 frames a second, sampled 30 times a second.
            self.assertEqual(array.shape, (int(row["frames"]), 6))
            self.assertAlmostEqual(array.shape[0], (399 + number) / 25 * 30, delta=1)
            self.assertTrue(np.isfinite(array[:]).all())
            self.assertLess(float(row["error"]), 0.051)
            self.assertLess(float(row["loop_gap"]), 0.001)
            self.assertLess(int(row["kept"]), int(row["keys"]))
        self.assertEqual(list(self.results.glob(".making-*/*.zarr")), [])

        # Again: nothing to do; then one that changed and one that is new.
        self.assertIn("0 of 25 captures", self.start().communicate(timeout=240)[0])
        before = {path: path.stat().st_mtime_ns for path in self.results.glob("*.zarr/.zarray")}
        self.write("walk03.bvh", 50)
        self.write("new.bvh", 60)
        (self.captures / "walk04.bvh").unlink()
        self.assertIn("2 of 25 captures", self.start().communicate(timeout=240)[0])
        changed = [path.parent.name for path, when in before.items() if path.stat().st_mtime_ns != when]
        self.assertEqual(changed, ["walk03.zarr"])
        self.assertNotIn("walk04.bvh", self.table())
        self.assertEqual(self.table()["new.bvh"]["state"], "done")


if __name__ == "__main__":
    unittest.main()
