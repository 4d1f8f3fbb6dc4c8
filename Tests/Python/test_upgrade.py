"""Scenes that carry the animation of the older format."""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest
import warnings

import kaanimation
from rig import KA_ANIM

DATA = pathlib.Path(os.environ.get("KA_SOURCE", "../.."), "Tests", "Life", "data")

# By hand, from the files: clips, tracks, blocks, sequences, curves, keys, and what is left out.
MADE = {
    "one_curve": (0, 0, 1, 0, 1, 2, 0),
    "camera_and_clips": (2, 2, 3, 1, 3, 6, 0),
    "tangent_codes": (0, 0, 1, 0, 1, 8, 0),
    "left_out": (1, 0, 1, 0, 1, 2, 5),
}


class Upgrade(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_what_is_made_and_left_out_is_counted(self):
        for name, counts in MADE.items():
            with self.subTest(name), kaanimation.open(DATA / f"{name}.osg") as project:
                self.assertEqual(len(project.curves), 0, "the module knows nothing of it yet")
                made = project.upgrade()
                self.assertEqual(tuple(made[key] for key in ("clips", "tracks", "blocks", "sequences", "curves", "keys"))
                                 + (len(made["left_out"]),), counts)
                self.assertEqual(len(project.curves), counts[4])
                self.assertEqual(sum(len(curve) for curve in project.curves), counts[5])
                for kind, _, reason in made["left_out"]:
                    self.assertIn(kind, ("clip", "track", "block", "sequence", "curve"))
                    self.assertTrue(reason)

    def test_a_second_time_there_is_nothing_left(self):
        with kaanimation.open(DATA / "one_curve.osg") as project:
            project.upgrade()
            self.assertEqual(project.upgrade()["curves"], 0)
            self.assertEqual(len(project.curves), 1)

    @unittest.skipUnless(KA_ANIM, "the command line is not built")
    def test_an_older_scene_becomes_what_the_command_line_makes_of_it(self):
        for name in MADE:
            scene, document = self.folder / f"{name}.osg", self.folder / f"{name}.xml"
            subprocess.run([KA_ANIM, "upgrade", DATA / f"{name}.osg", "-o", scene, "--animation", document],
                           capture_output=True)
            with kaanimation.open(scene, document) as project:
                wanted = project.summary()
            with kaanimation.open(DATA / f"{name}.osg") as project:
                project.upgrade()
                with warnings.catch_warnings(): # one of the files has a curve of a single key
                    warnings.simplefilter("ignore", kaanimation.FaultWarning)
                    project.save(self.folder / "ours.osg", self.folder / "ours.xml")
            with kaanimation.open(self.folder / "ours.osg", self.folder / "ours.xml") as project:
                comparison = kaanimation.compare(wanted, project.summary())
            self.assertEqual([(part.element, part.name, part.what) for part in comparison.structure], [])
            self.assertEqual(max((part.error for part in comparison.values), default=0), 0)
            findings = [[finding.message for finding in kaanimation.validate(*files)] for files in
                        ((document, scene), (self.folder / "ours.xml", self.folder / "ours.osg"))]
            self.assertEqual(findings[0], findings[1])

    def test_the_camera_may_be_chosen(self):
        with kaanimation.open(DATA / "camera_and_clips.osg") as project:
            figure = project.scene.find("figure")
            told = []
            made = project.upgrade(figure, progress=lambda *step: told.append(step))
            self.assertTrue(made["camera"].endswith("figure"))
            self.assertTrue(told)

    def test_what_progress_raises_comes_out(self):
        with kaanimation.open(DATA / "camera_and_clips.osg") as project:
            with self.assertRaises(LookupError):
                project.upgrade(progress=lambda *step: {}["nothing"])


if __name__ == "__main__":
    unittest.main()
