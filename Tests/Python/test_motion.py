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


if __name__ == "__main__":
    unittest.main()
