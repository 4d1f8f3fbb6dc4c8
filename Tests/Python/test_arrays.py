"""Arrays against the same numbers one by one and through the command line."""

import csv
import io
import subprocess
import unittest

import numpy as np

import kaanimation
from rig import CAPTURES, KA_ANIM, Rig


class Sampling(Rig):
    def test_every_sample_is_the_player_s_own_float(self):
        frames = np.linspace(0, 10, 101, dtype=np.float32)
        samples = self.clip.sample(frames)
        self.assertEqual(samples.shape, (101, 6))
        self.assertEqual(samples.values.dtype, np.float32)
        self.assertEqual(samples.names, tuple(curve.label for curve in samples.curves))
        self.assertEqual(set(samples.units), {"degrees"})
        for column, curve in enumerate(samples.curves):
            one_by_one = [curve.value_at(float(frame)) for frame in frames]
            np.testing.assert_array_equal(samples.values[:, column], np.array(one_by_one, np.float32))

    def test_outside_its_keys_a_curve_holds_unless_told(self):
        self.assertEqual(self.curve.sample([-3, 99]).values[:, 0].tolist(), [0.0, self.curve.keys[-1].value])
        second = self.curve.keys[1].value
        self.assertEqual(self.curve.sample([-3], hold=False).values[0, 0], second)

    def test_a_curve_without_value_gives_nan(self):
        arm = self.project.scene.find("Arm")
        empty = self.project.create_curve(arm, "scaleX") if arm.fields else None
        self.assertTrue(np.isnan(empty.sample([0, 1]).values).all())
        self.assertTrue(np.isnan(self.curve.sample([float("nan")]).values).all())

    def test_frames_come_in_any_shape_of_a_row(self):
        for frames in (range(3), [0, 1, 2], np.arange(3), np.arange(6)[::2] / 2, (0.0, 1.0, 2.0)):
            self.assertEqual(self.curve.sample(frames).shape, (3, 1))
        self.assertEqual(self.curve.sample(5).values.tolist(), [[90.0]])
        self.assertEqual(self.curve.sample([]).shape, (0, 1))
        with self.assertRaises(ValueError):
            self.curve.sample([[1, 2], [3, 4]])
        with self.assertRaises((TypeError, ValueError)):
            self.curve.sample("frames")

    def test_columns_are_found_by_name(self):
        samples = self.clip.sample(range(11))
        self.assertEqual(samples["Arm.rotationZ"][5], 90.0)
        self.assertEqual(np.asarray(samples).shape, (11, 6))
        with self.assertRaises(KeyError):
            samples["Foot.rotationZ"]

    @unittest.skipUnless(KA_ANIM, "the command line is not built")
    def test_the_command_line_samples_the_same(self):
        self.project.close()
        capture = CAPTURES / "01_01.bvh"
        text = subprocess.run([KA_ANIM, "sample", capture, "--from", "0", "--to", "20"], check=True,
                              capture_output=True, text=True).stdout
        told = {}
        for row in csv.DictReader(io.StringIO(text)):
            told[int(row["curve"]), float(row["frame"])] = float(row["value"])
        with kaanimation.open(capture) as project:
            samples = project.clips[0].sample(range(21))
        compared = [(told[curve.id, frame], samples.values[frame, column])
                    for column, curve in enumerate(samples.curves) for frame in range(21)]
        self.assertGreater(len(compared), 1000)
        np.testing.assert_array_equal(*np.array(compared, np.float32).T)


class Positions(Rig):
    def assert_as_one_by_one(self, project, frames, objects=None):
        """The very floats of evaluating frame by frame, in the order given, and the scene left at the last frame."""
        positions = project.world_positions(frames, objects=objects)
        nodes = project.scene.placed_nodes
        self.assertEqual(positions.shape, (len(frames), len(nodes), 3))
        left = np.array([node.position for node in nodes], np.float32)
        for row, frame in enumerate(frames):
            project.evaluate(float(frame), objects or ())
            one_by_one = np.array([node.position for node in nodes], np.float32)
            np.testing.assert_array_equal(positions[row], one_by_one)
        np.testing.assert_array_equal(left, one_by_one)
        return positions

    def test_positions_are_those_of_nodes_evaluated_one_by_one(self):
        self.project.close()
        for model in ("BVH/01_01.bvh", "BVH/Boxing_Toes.bvh", "FBX/animation_with_skeleton.fbx",
                      "glTF2/BoxAnimated-glTF-Binary/BoxAnimated.glb", "Collada/Human.dae", "B3D/dwarf2.b3d"):
            path = CAPTURES.parent / model
            if not path.exists():
                continue
            with self.subTest(model), kaanimation.open(path) as project:
                begin, end = project.frame_range
                self.assert_as_one_by_one(project, [*np.linspace(begin - 3, end + 3, 11), begin, end, begin])

    def test_positions_of_what_is_not_driven_curve_by_curve(self):
        frames = [-4, 0, 2.5, 7, 12, 25, 3]
        arm = self.project.scene.find("Arm")
        cases = {
            "as it is": lambda: None,
            "two curves for one number": lambda: self.project.copy_clip(self.clip, "again").move(6),
            "one after the other": lambda: self.project.copy_clip(self.clip, "later").move(20),
            "a block that repeats": lambda: setattr(self.block, "repeating", True),
            "curves that repeat": lambda: [setattr(curve, "repeating", True) for curve in self.clip.curves],
            "a curve that is switched off": lambda: setattr(self.curve, "active", False),
            "a block that was trimmed": lambda: self.block.trim_end(6),
            "a curve of one frame": lambda: self.curve.remove_keys(1, 99),
            "a curve without keys": lambda: self.project.create_block(
                "grow", [self.project.create_curve(arm, "scaleX")]),
            "a rest pose that is turned": lambda: setattr(arm.field("translationX"), "value", 3),
        }
        for name, change in cases.items():
            with self.subTest(name):
                self.project.close()
                self.setUp()
                arm = self.project.scene.find("Arm")
                change()
                moved = self.assert_as_one_by_one(self.project, frames, self.project.clips + self.project.blocks)
                self.assertGreater(np.abs(np.diff(moved, axis=0)).max(), 0.5)

    def test_events_fire_at_every_frame_as_when_playing(self):
        track = self.clip.tracks[0]
        track.add(self.project.create_sequence("high", 4, 6))
        heard = []
        self.project.player.on_sequence = lambda name: heard.append(name)
        self.project.world_positions([0, 5, 1, 5])
        self.assertEqual(len(heard), 2)
        self.assert_as_one_by_one(self.project, [0, 5, 1])

    def test_the_hand_goes_round_the_arm(self):
        # At frame 5 the arm has turned by 90 degrees about z: the hand, ten units along x, is ten units along y.
        arm, hand = self.project.scene.find("Arm"), self.project.scene.find("Hand")
        positions = self.project.world_positions([0, 5], nodes=[hand, arm])
        np.testing.assert_allclose(positions[:, 0], [[10, 0, 0], [0, 10, 0]], atol=1e-4)
        np.testing.assert_array_equal(positions[:, 1], np.zeros((2, 3), np.float32))

    def test_no_frames_and_no_nodes_are_fine(self):
        self.assertEqual(self.project.world_positions([]).shape, (0, 3, 3))
        self.assertEqual(self.project.world_positions([1, 2], nodes=[]).shape, (2, 0, 3))
        with self.assertRaises(ValueError):
            self.project.world_positions([float("inf")])


class Keys(Rig):
    def test_keys_out_and_in_give_the_same_curve(self):
        table = self.curve.get_keys()
        self.assertEqual(table.dtype, kaanimation.KEY_DTYPE)
        before = self.curve.sample(np.linspace(0, 10, 301)).values
        table["tangent"] = kaanimation.Tangent.USER # as they are, whatever would be computed
        self.curve.set_keys(table[::-1])
        np.testing.assert_array_equal(self.curve.get_keys(), table)
        np.testing.assert_array_equal(self.curve.sample(np.linspace(0, 10, 301)).values, before)

    def test_pairs_of_frame_and_value_are_smooth_keys_as_added_one_by_one(self):
        pairs = np.array([[0, 1], [4, 3], [9, -2.5], [20, 0]], np.float64)
        self.curve.set_keys(pairs)
        arm = self.project.scene.find("Arm")
        other = self.project.create_curve(arm, "translationX")
        for frame, value in pairs:
            other.add_key(frame, value)
        np.testing.assert_array_equal(self.curve.get_keys(), other.get_keys())
        self.assertEqual((self.curve.begin, self.curve.end), (0, 20))
        self.assertEqual(self.clip.end, 20, "what holds the curve has heard of it")

    def test_what_numpy_makes_an_array_of_is_one(self):
        self.curve.set_keys([[0, 1], [10, 2.5]])
        self.assertEqual([(key.frame, key.value) for key in self.curve.keys], [(0, 1), (10, 2.5)])
        for wrong in ("keys", object(), [[0, "a"]]):
            with self.assertRaises((TypeError, ValueError)):
                self.curve.set_keys(wrong)
        self.assertEqual(len(self.curve), 2)

    def test_former_keys_are_gone_and_the_curve_still_plays(self):
        key = self.curve.keys[0]
        count = self.project.object_count
        self.curve.set_keys(np.array([[0, 7], [10, 7]]))
        self.assertFalse(key.is_alive)
        self.assertEqual(self.project.object_count, count - 9)
        self.project.evaluate(5)
        self.assertEqual(self.project.scene.find("Arm").rotation[2], 7.0)

    def test_an_array_that_no_curve_can_hold_changes_nothing(self):
        before = self.curve.get_keys()
        count = self.project.object_count
        bad = before.copy()
        bad["value"][3] = np.inf
        twice = before.copy()
        twice["frame"][4] = twice["frame"][7]
        for table, word in ((bad, "key 3"), (twice, "4 and 7"), (np.zeros(3), "shape"), (np.zeros((3, 3)), "shape"),
                            (before[["frame", "tangent"]], "value"), (before[["frame", "value", "in_frame"]], "four")):
            with self.assertRaisesRegex(ValueError, word):
                self.curve.set_keys(table)
        np.testing.assert_array_equal(self.curve.get_keys(), before)
        self.assertEqual(self.project.object_count, count)

    def test_no_keys_at_all_leave_an_empty_curve(self):
        self.curve.set_keys(np.empty((0, 2)))
        self.assertEqual(len(self.curve), 0)
        self.curve.set_keys(np.array([[1, 2], [3, 4]]))
        self.assertEqual(self.curve.sample([1]).values[0, 0], 2)


if __name__ == "__main__":
    unittest.main()
