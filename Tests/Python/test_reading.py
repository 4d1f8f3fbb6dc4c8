"""Opening, looking around, and what happens to those who hold on to what is gone."""

import gc
import pathlib
import pprint
import tempfile
import threading
import traceback
import unittest

import kaanimation
from rig import CAPTURES, Rig


class Looking(Rig):
    def test_a_capture_is_a_clip_of_tracks_of_blocks_of_curves_of_keys(self):
        self.assertEqual([clip.name for clip in self.project.clips], ["swing"])
        self.assertEqual((self.clip.begin, self.clip.end), (0.0, 10.0))
        blocks = [block for track in self.clip.tracks for block in track.blocks]
        self.assertEqual({block.node.name for block in blocks}, {"Arm", "Hand"})
        self.assertEqual(blocks, self.clip.blocks)
        self.assertEqual(sorted(curve.label for block in blocks for curve in block),
                         [f"{node}.rotation{axis}" for node in ("Arm", "Hand") for axis in "XYZ"])

    def test_keys_have_frames_values_handles_and_types(self):
        # The arm's first channel is 90 degrees times the sine of a half turn over ten frames.
        self.assertEqual(len(self.curve), 11)
        key = self.curve.keys[5]
        self.assertEqual((key.frame, key.value), (5.0, 90.0))
        self.assertIsInstance(key.tangent, kaanimation.Tangent)
        self.assertLess(key.in_handle[0], 5.0)
        self.assertGreater(key.out_handle[0], 5.0)
        self.assertEqual(key.parent, self.curve)

    def test_lists_can_be_sliced_and_counted(self):
        self.assertEqual([key.frame for key in self.curve.keys[2:8:2]], [2.0, 4.0, 6.0])
        self.assertEqual(self.block[0], self.block.children[0])
        self.assertEqual(self.block[-2:], self.block.children[-2:])
        self.assertEqual(len(self.block), 3)
        self.assertIn(self.block[1], self.block)
        with self.assertRaises(IndexError):
            self.block[3]

    def test_the_scene_is_found_by_name_path_and_pattern(self):
        hand = self.project.scene.find("Hand")
        self.assertEqual(hand, self.project.scene.find("Arm/Hand"))
        self.assertEqual(hand.parent, self.project.scene.find("Arm"))
        self.assertEqual([node.name for node in self.project.scene.find_all("H*d")], ["Hand", "Hand_End"])
        self.assertEqual(hand.translation, [10.0, 0.0, 0.0])
        self.assertTrue(hand.path.endswith("Arm/Hand"))
        with self.assertRaisesRegex(kaanimation.UsageError, "Foot"):
            self.project.scene.find("Foot")

    def test_a_capture_of_thousands_of_keys_reads_the_same_way(self):
        self.project.close()
        with kaanimation.open(CAPTURES / "01_01.bvh") as project:
            self.assertGreater(len(project.scene), 20)
            keys = sum(len(curve) for curve in project.curves)
            clip = project.clips[0]
            self.assertEqual(keys, sum(len(curve.keys) for curve in clip.curves))
            self.assertGreater(keys, 10_000)

    def test_objects_are_equal_by_what_they_stand_for_and_can_be_in_sets(self):
        self.assertEqual(self.project[self.clip.id], self.clip)
        self.assertEqual(self.project["swing"], self.clip)
        self.assertEqual(len({self.clip, self.project["swing"], self.block}), 2)
        self.assertNotEqual(self.clip, self.block)
        self.assertNotEqual(self.clip, 3)

    def test_lists_of_objects_can_be_printed_in_columns(self):
        self.assertIn("<curve 'rotationZ' 0 to 10>", pprint.pformat([self.curve, self.clip]))
        self.assertIn("<node 'Hand'>", pprint.pformat(self.project.scene.nodes))

    def test_help_says_what_everything_is(self):
        for kind in (kaanimation.Project, kaanimation.Clip, kaanimation.Track, kaanimation.Block, kaanimation.Curve,
                     kaanimation.Key, kaanimation.Node, kaanimation.Field, kaanimation.Scene, kaanimation.Samples):
            self.assertTrue(kind.__doc__, kind)
            for name, member in vars(kind).items():
                if not name.startswith("_") and (callable(member) or isinstance(member, property)):
                    self.assertTrue(member.__doc__, f"{kind.__name__}.{name}")


class Gone(Rig):
    def test_what_was_destroyed_raises_when_it_is_touched(self):
        key, curve = self.curve.keys[0], self.curve
        self.block.destroy() if curve in self.block else self.clip.destroy()
        for touch in (lambda: curve.name, lambda: curve.keys, lambda: len(curve), lambda: key.value,
                      lambda: curve.add_key(1, 2), lambda: curve.sample([0]), lambda: setattr(key, "frame", 3)):
            with self.assertRaises(kaanimation.GoneError):
                touch()
        self.assertFalse(curve.is_alive)
        self.assertIn("destroyed", repr(curve))

    def test_nodes_that_went_raise_too(self):
        hand = self.project.scene.find("Hand")
        curves = [curve for curve in self.project.curves if curve.node == hand]
        hand.destroy()
        with self.assertRaises(kaanimation.GoneError):
            hand.name
        self.assertEqual([curve.is_alive for curve in curves], [False] * 3)

    def test_everything_of_a_closed_project_raises(self):
        self.project.close()
        self.project.close()
        for touch in (lambda: self.project.clips, lambda: self.clip.name, lambda: self.curve.keys,
                      lambda: self.project.scene.find("Arm"), lambda: self.project.save("x.xml")):
            with self.assertRaises(kaanimation.ClosedError):
                touch()
        self.assertFalse(self.clip.is_alive)
        self.assertFalse(self.project.is_open)

    def test_an_object_keeps_its_project_alive(self):
        curve = self.curve
        self._cleanups.clear()
        del self.project, self.clip, self.block, self.curve
        gc.collect()
        self.assertEqual(len(curve.keys), 11)
        with self.assertRaises(kaanimation.OpenError):
            kaanimation.open(kaanimation.example())
        del curve
        gc.collect()
        kaanimation.open(kaanimation.example()).close()


class Opening(unittest.TestCase):
    def test_one_project_at_a_time(self):
        with kaanimation.open(kaanimation.example()) as project:
            with self.assertRaises(kaanimation.OpenError):
                kaanimation.open(kaanimation.example())
            self.assertEqual(len(project.clips), 1)
        with kaanimation.open(kaanimation.example()):
            pass

    def test_with_closes_also_where_it_ends_by_an_exception(self):
        with self.assertRaises(ZeroDivisionError):
            with kaanimation.open(kaanimation.example()):
                1 / 0
        kaanimation.open(kaanimation.example()).close()

    def test_a_file_that_is_missing_or_broken_is_named_with_its_line(self):
        with self.assertRaises(kaanimation.FileError) as caught:
            kaanimation.open("nowhere.bvh")
        self.assertEqual(caught.exception.file, "nowhere.bvh")
        with tempfile.TemporaryDirectory() as folder:
            broken = pathlib.Path(folder, "broken.bvh")
            broken.write_text(kaanimation.example().read_text().replace("OFFSET 10 0 0", "OFFSET ten 0 0"))
            with self.assertRaises(kaanimation.FileError) as caught:
                kaanimation.open(broken)
            self.assertEqual(caught.exception.file, str(broken))
            self.assertEqual(caught.exception.line, 8)
            document = pathlib.Path(folder, "broken.xml")
            document.write_text("<AnimationPool>\n<curve>\n</AnimationPool>\n")
            with self.assertRaises(kaanimation.FileError) as caught:
                kaanimation.open(document)
            self.assertEqual(caught.exception.line, 3)
        kaanimation.open(kaanimation.example()).close()

    def test_another_thread_is_refused_and_may_open_once_the_first_has_closed(self):
        raised = []

        def touch(call):
            try:
                call()
            except Exception as error:
                raised.append(type(error))

        def run(call):
            thread = threading.Thread(target=touch, args=(call,))
            thread.start()
            thread.join()

        project = kaanimation.open(kaanimation.example())
        clip = project.clips[0]
        for call in (lambda: clip.name, lambda: project.clips, project.close,
                     lambda: kaanimation.open(kaanimation.example()), lambda: clip.sample([0])):
            run(call)
        self.assertEqual(raised, [kaanimation.ThreadError] * 5)
        self.assertEqual(clip.name, "swing")
        project.close()
        run(lambda: kaanimation.open(kaanimation.example()).close())
        self.assertEqual(len(raised), 5)

    def test_progress_is_told_and_what_it_raises_comes_out(self):
        with tempfile.TemporaryDirectory() as folder:
            scene, document = pathlib.Path(folder, "a.osg"), pathlib.Path(folder, "a.xml")
            with kaanimation.open(kaanimation.example()) as project:
                told = []
                project.save(scene, document, progress=lambda *step: told.append(step))
                self.assertTrue(told)

                def fail(what, done, total):
                    raise KeyError(what)

                try:
                    project.save(scene, document, progress=fail)
                    self.fail("nothing was raised")
                except KeyError as error:
                    self.assertEqual(traceback.extract_tb(error.__traceback__)[-1].name, "fail")
            with kaanimation.open(scene, document) as project:
                self.assertEqual(len(project.curves), 6)

    def test_arguments_that_make_no_sense_are_refused(self):
        for keywords in ({"frames_per_second": 0}, {"frames_per_second": float("nan")}, {"rotation_tolerance": -1}):
            with self.assertRaises(ValueError):
                kaanimation.open(kaanimation.example(), **keywords)
        with self.assertRaises(TypeError):
            kaanimation.open(3)


if __name__ == "__main__":
    unittest.main()
