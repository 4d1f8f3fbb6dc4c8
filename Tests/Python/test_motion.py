"""What is done with whole motions, by what is known of the result."""

import unittest

import numpy as np

import kaanimation
from rig import CAPTURES, Rig


class Motions(Rig):
    def setUp(self):
        super().setUp()
        self.frames = np.arange(0, 10.25, 0.25)

    def values(self):
        return self.clip.sample(self.frames).values

    def test_thinning_stays_within_its_bound(self):
        self.project.close()
        with kaanimation.open(CAPTURES / "Boxing_Toes.bvh") as project:
            clip = project.clips[0]
            frames = np.arange(clip.begin, clip.end, 0.25)
            before = clip.sample(frames)
            keys = sum(len(curve) for curve in clip.curves)
            would = clip.reduce(rotation=0.5, dry=True)
            self.assertEqual(sum(len(curve) for curve in clip.curves), keys)
            report = clip.reduce(rotation=0.5)
            self.assertEqual(would.keys_after, report.keys_after)
            self.assertEqual((report.keys_before, report.keys_after),
                             (keys, sum(len(curve) for curve in clip.curves)))
            self.assertLess(report.keys_after, keys / 2)
            self.assertEqual(report.faults, [])
            turns = [index for index, unit in enumerate(before.units) if unit == "degrees"]
            off = np.abs(clip.sample(frames).values - before.values)[:, turns]
            self.assertLessEqual(off.max(), 0.5 + 1e-4)
            self.assertIn("keys", str(report))

    def test_progress_that_raises_changes_nothing(self):
        before = self.curve.get_keys()

        def fail(*step):
            raise KeyError("stop")

        with self.assertRaises(KeyError):
            self.clip.reduce(progress=fail)
        np.testing.assert_array_equal(self.curve.get_keys(), before)

    def test_backwards_twice_is_as_before(self):
        before = self.values()
        self.clip.play_backwards()
        np.testing.assert_allclose(self.values(), before[::-1], atol=1e-3)
        self.clip.play_backwards()
        np.testing.assert_allclose(self.values(), before, atol=1e-3)

    def test_values_and_times_are_scaled(self):
        before = self.values()
        self.clip.change_values(2, 1)
        np.testing.assert_allclose(self.values(), 2 * before + 1, rtol=1e-5, atol=1e-4)
        self.clip.retime(scale=3, shift=5)
        self.assertEqual((self.clip.begin, self.clip.end), (5, 35))
        self.clip.trim(8, 20, to_start=True)
        self.assertEqual((self.clip.begin, self.clip.end), (0, 12))
        self.clip.resample(4)
        self.assertEqual([key.frame for key in self.curve.keys], [0, 4, 8, 12])
        with self.assertRaises(kaanimation.UsageError):
            self.clip.trim(9, 3)

    def test_a_loop_ends_as_it_begins(self):
        self.curve.keys[-1].value = 33
        self.clip.loop(5)
        ends = self.clip.sample([0, 10]).values
        np.testing.assert_allclose(ends[0], ends[1], atol=1e-3)
        with self.assertRaises(kaanimation.UsageError):
            self.clip.loop(root="anywhere")

    def test_a_peak_is_put_back(self):
        pairs = np.stack([np.arange(30), np.arange(30) * 0.1], 1)
        pairs[12, 1] = 50
        self.curve.set_keys(pairs)
        self.curve.remove_peaks()
        self.assertAlmostEqual(self.curve.keys[12].value, 1.2, places=4)

    def test_smoothing_takes_jitter_off(self):
        jitter = np.where(np.arange(200) % 2, 1.0, -1.0)
        self.curve.set_keys(np.stack([np.arange(200), jitter], 1))
        self.curve.smooth(2)
        self.assertLess(np.abs(self.curve.get_keys()["value"][20:-20]).max(), 0.05)

    def test_clips_are_merged_and_split(self):
        report = self.project.merge_clips([self.clip, self.clip.duplicate()], name="both")
        both = self.project["both"]
        self.assertEqual((both.begin, both.end), (0, 21))
        self.project.split_clip(both, [11])
        self.assertFalse(both.is_alive)
        self.assertEqual(self.project["both 1"].begin, 0)
        self.assertEqual(report.operation, "merge")
        with self.assertRaises(kaanimation.UsageError):
            self.project.merge_clips([self.clip])

    def test_nodes_are_renamed(self):
        self.project.rename_nodes("H*", "Left*")
        self.assertEqual(self.project.scene.find("Leftand").name, "Leftand")

    def test_a_skeleton_moves_another(self):
        self.project.evaluate(0)
        skeleton = self.clip.record_skeleton()
        self.assertEqual(skeleton.frames[-1], 10)
        self.project.close()
        with kaanimation.open(kaanimation.example()) as project:
            before = len(project.clips)
            project.retarget(skeleton)
            self.assertEqual(len(project.clips), before + 1)

    def test_a_skeleton_is_plain_numbers(self):
        skeleton = self.clip.record_skeleton("swing")
        self.assertEqual((skeleton.name, [joint.name for joint in skeleton.joints][-2:]), ("swing", ["Hand", "Hand_End"]))
        arm = next(joint for joint in skeleton.joints if joint.name == "Arm")
        hand = next(joint for joint in skeleton.joints if joint.name == "Hand")
        self.assertEqual(skeleton.joints[hand.parent].name, "Arm")
        self.assertEqual((arm.moved, hand.rest_position, hand.rest_rotation), (True, [10, 0, 0], [0, 0, 0, 1]))
        self.assertEqual((hand.positions.shape, hand.rotations.shape),
                         ((len(skeleton.frames), 3), (len(skeleton.frames), 4)))
        middle = skeleton.frames.index(5)
        np.testing.assert_allclose(hand.positions[middle], [0, 10, 0], atol=1e-4)
        np.testing.assert_allclose(np.abs(arm.rotations[middle]), [0, 0, 0.5**0.5, 0.5**0.5], atol=1e-4)

    def test_speed_changes_when_things_happen(self):
        # Twice as fast throughout: half as long, and every value at half its time.
        before = self.values()
        self.clip.retime(speed=[(0, 2), (10, 2)])
        self.assertAlmostEqual(self.clip.end, 5, places=3)
        np.testing.assert_allclose(self.clip.sample(self.frames / 2).values, before, atol=0.05)
        self.clip.retime(map=[(0, 0), (5, 10)])
        self.assertEqual(self.clip.end, 10)
        for wrong in ([(0, 0), (1, 1)], [(3, 1), (2, 1)]):
            with self.assertRaises(kaanimation.UsageError):
                self.clip.retime(speed=wrong)

    def test_keys_come_where_they_are_asked_for(self):
        self.clip.resample(frames=[0, 2.5, 10], shape="step", keep_ends=False)
        self.assertEqual([key.frame for key in self.curve.keys], [0, 2.5, 10])
        self.assertEqual(self.curve.value_at(2), self.curve.keys[0].value, "steps hold")
        self.clip.resample(5, shape="straight")
        middle = (self.curve.keys[0].value + self.curve.keys[1].value) / 2
        self.assertAlmostEqual(self.curve.value_at(2.5), middle, places=4)
        with self.assertRaisesRegex(kaanimation.UsageError, "'smooth', 'straight', 'step'"):
            self.clip.resample(shape="round")

    def test_progress_that_gives_false_gives_up(self):
        before = self.values()
        for operate in (self.clip.smooth, self.clip.remove_flips, self.clip.remove_peaks, self.clip.play_backwards,
                        self.clip.reduce, self.clip.loop, self.clip.resample, self.clip.retime,
                        self.clip.change_values, lambda progress: self.clip.trim(2, 4, progress=progress),
                        lambda progress: self.project.split_clip(self.clip, [5], progress=progress)):
            report = operate(progress=lambda *step: False)
            self.assertTrue(report.cancelled, report.operation)
        np.testing.assert_array_equal(self.values(), before)

    def test_clips_and_curves_are_removed_with_what_is_empty_then(self):
        copy = self.project.copy_clip(self.clip, "copy")
        self.assertEqual(len(self.project.clips), 2)
        self.assertEqual(len(self.project.scene.find("Arm").objects), 2, "the copy is listed")
        self.assertEqual(self.project.remove_clips([copy]).changed_curves, 6)
        self.assertFalse(copy.is_alive)
        arm = [curve for curve in self.clip.curves if curve.node.name == "Arm"]
        self.project.remove_curves(arm)
        self.assertEqual([block.node.name for block in self.clip.blocks], ["Hand"])
        self.project.remove_curves(self.clip.curves)
        self.assertFalse(self.clip.is_alive)

    def test_merging_may_take_the_sources(self):
        copy = self.project.copy_clip(self.clip, "copy")
        self.project.merge_clips([self.clip, copy], cross_fade=4, remove_sources=True)
        self.assertEqual([clip.name for clip in self.project.clips], ["merged"])
        self.assertEqual(self.project["merged"].end, 16)

    def test_what_is_worked_on_is_chosen_by_names(self):
        labels = [curve.label for curve in self.project.select_curves(nodes=["H*"], curves=["rotation[XZ]"])]
        self.assertEqual(labels, ["Hand.rotationX", "Hand.rotationZ"])
        self.assertEqual(self.project.select_clips(), [self.clip])
        self.assertEqual(self.project.select_clips(["sw*"]), [self.clip])
        with self.assertRaisesRegex(kaanimation.UsageError, "did you mean 'Hand'"):
            self.project.select_curves(nodes=["Hund"])
        self.assertIn(self.curve, self.project.telling_curves)

    def test_names_of_sides_and_tables(self):
        self.assertEqual(kaanimation.mirrored_name("LeftArm"), "RightArm")
        self.assertEqual(kaanimation.mirrored_name("Hips"), "Hips")
        self.assertEqual(kaanimation.mirrored_name("armX", [("X", "Y")]), "armY")
        self.assertEqual(kaanimation.renamed("rig:Hips", "rig:*", "*"), "Hips")
        self.assertIsNone(kaanimation.renamed("Hips", "rig:*", "*"))
        self.assertEqual(kaanimation.name_table("# names\nhip = Hips\n"), [("hip", "Hips")])
        with self.assertRaises(kaanimation.FileError):
            kaanimation.name_table("hip")

    def test_a_report_is_text_and_json(self):
        import json

        report = self.clip.reduce(rotation=0.25, dry=True)
        self.assertEqual({measure.allowed for measure in report.measures if measure.unit == "degrees"}, {0.25})
        told = json.loads(report.json())
        self.assertEqual(told["curves"], 6)
        self.assertTrue(report.dry)
        self.assertIn("reduce", repr(report))


if __name__ == "__main__":
    unittest.main()
