"""Making, changing, copying, saving, and what is refused."""

import pathlib
import tempfile
import unittest
import warnings

import numpy as np

import kaanimation
from kaanimation import Length, Tangent
from rig import Rig


class Editing(Rig):
    def test_keys_can_be_moved_and_their_curve_follows(self):
        key = self.curve.keys[-1]
        key.frame = 20
        key.value = -5
        self.assertEqual((self.curve.end, self.curve.minimum), (20, -5))
        self.assertEqual(self.clip.end, 20)
        with self.assertRaises(kaanimation.RefusedError):
            key.frame = 5
        with self.assertRaises(ValueError):
            key.frame = float("nan")

    def test_handles_follow_the_tangent_type(self):
        key = self.curve.keys[3]
        key.tangent = Tangent.FLAT
        self.assertEqual(key.in_handle[1], key.value)
        self.assertEqual(key.out_handle[1], key.value)
        key.tangent = Tangent.COLLAPSED
        self.assertEqual(key.out_handle, (key.frame, key.value))
        key.out_handle = (key.frame + 0.25, key.value + 1)
        self.assertIs(key.tangent, Tangent.USER)
        self.assertEqual(key.out_handle, (3.25, key.value + 1))
        key.length = Length.THIRD
        key.tangent = 7 # no member, and stored as it is
        self.assertEqual(key.tangent, 7)

    def test_keys_can_be_added_split_and_removed(self):
        with self.assertRaises(kaanimation.RefusedError):
            self.curve.add_key(5, 1)
        self.assertEqual(self.curve.add_key(5, 1, replace=True).value, 1)
        value = self.curve.value_at(2.5)
        key = self.curve.split(2.5)
        self.assertAlmostEqual(key.value, value, places=5)
        self.assertEqual(self.curve.remove_keys(2, 5), 5)
        self.assertEqual([key.frame for key in self.curve.keys], [0, 1, 6, 7, 8, 9, 10])
        self.assertIsNone(self.curve.key_at(5))

    def test_objects_move_stretch_and_mirror(self):
        self.clip.move(5)
        self.assertEqual((self.clip.begin, self.clip.end), (5, 15))
        self.clip.move_end(25)
        self.assertEqual((self.curve.begin, self.curve.end), (5, 25))
        self.assertEqual(self.curve.keys[5].frame, 15)
        self.clip.flip()
        self.assertTrue(self.clip.flipped)
        for call in (self.clip.move_begin, self.block.move_begin, self.block.trim_begin):
            with self.assertRaises(kaanimation.RefusedError):
                call(25)
        self.assertEqual(self.block.begin, 5)

    def test_a_scene_built_from_nothing_but_names(self):
        door = self.project.scene.root.add_child("door")
        curve = self.project.create_curve(door, "rotationY")
        curve.set_keys(np.array([[0, 0], [25, 90]]))
        block = self.project.create_block("opening", [curve])
        self.assertEqual(block.node, door)
        self.assertIn(block, door.objects)
        track, clip = self.project.create_track("a"), self.project.create_clip("doors")
        track.add(block)
        clip.add(track)
        self.assertEqual(clip.tracks, [track])
        self.project.evaluate(25, [clip])
        self.assertEqual(door.rotation, [0, 90, 0])
        with self.assertRaises(kaanimation.UsageError):
            self.project.create_curve(door, "colour")
        with self.assertRaises(kaanimation.RefusedError):
            block.add(clip)
        with self.assertRaises(kaanimation.RefusedError):
            track.insert(self.project.create_block("again", [curve.duplicate()]))

    def test_names_are_latin_1(self):
        self.clip.name = "Gehen é"
        self.assertEqual(self.clip.name, "Gehen é")
        with self.assertRaises(ValueError):
            self.clip.name = "歩く"
        self.assertEqual(self.clip.name, "Gehen é")

    def test_fields_read_and_write_the_scene(self):
        arm = self.project.scene.find("Arm")
        field = arm.field("translationY")
        field.value = 4.5
        self.assertEqual(arm.translation, [0, 4.5, 0])
        self.assertEqual(field.value, 4.5)
        self.assertEqual(field.node, arm)
        self.assertEqual(arm.field("rotationZ").curves, [self.curve])
        self.assertEqual(self.curve.field, arm.field("rotationZ"))

    def test_flags_and_ranges(self):
        for flag in ("active", "repeating", "reverse", "motion_blur", "selected"):
            for value in (True, False):
                setattr(self.clip, flag, value)
                self.assertEqual(getattr(self.clip, flag), value)
        self.assertIsNone(self.clip.custom_range)
        self.clip.custom_range = (2, 8)
        self.assertEqual(self.clip.custom_range, (2, 8))
        self.clip.custom_range = None
        self.assertIsNone(self.clip.custom_range)


class Copying(Rig):
    def test_what_a_node_has_is_pasted_to_another(self):
        root = self.project.scene.root
        one, other = root.add_child("one"), root.add_child("other")
        curve = self.project.create_curve(one, "translationX")
        curve.set_keys(np.array([[0, 0], [10, 5]]))
        self.project.create_block("slide", [curve]) # which the node lists
        self.project.copy(one)
        self.assertEqual(len(self.project.copied), 1)
        self.project.paste(other)
        self.assertEqual(self.project.copied, [])
        self.project.evaluate(10, other.objects)
        self.assertEqual(other.translation[0], 5)
        with self.assertRaises(kaanimation.RefusedError):
            self.project.paste(other)
        with self.assertRaises(kaanimation.RefusedError):
            self.project.copy(root.add_child("bare"))

    def test_copies_stand_by_themselves(self):
        copy = self.clip.duplicate()
        self.assertNotEqual(copy.id, self.clip.id)
        self.assertEqual(len(copy.curves), 6)
        self.assertNotIn(self.curve, copy.curves)
        copy.destroy()
        self.assertEqual(len(self.clip.curves), 6)

    def test_a_pattern_takes_many_nodes(self):
        root = self.project.scene.root
        source = root.add_child("source")
        curve = self.project.create_curve(source, "translationX")
        curve.set_keys(np.array([[0, 0], [10, 5]]))
        self.project.create_block("slide", [curve])
        for name in ("leaf1", "leaf2"):
            root.add_child(name)
        pasted, passed_by = self.project.paste_to(source, "leaf*")
        self.assertEqual(len(pasted), 2)
        self.assertEqual(passed_by, [])


class Files(Rig):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_what_is_saved_is_opened_again_as_it_was(self):
        frames = np.linspace(0, 10, 41)
        before = self.clip.sample(frames)
        summary = self.project.summary()
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            self.assertEqual(self.project.save(self.folder / "a.osg", self.folder / "a.xml"), [])
        self.project.close()
        with kaanimation.open(self.folder / "a.osg", self.folder / "a.xml") as project:
            after = project.clips[0].sample(frames)
            self.assertEqual(after.names, before.names)
            np.testing.assert_allclose(after.values, before.values, atol=1e-4)
            comparison = kaanimation.compare(summary, project.summary(), tolerance=1e-4)
            self.assertEqual(comparison.structure, [])
            self.assertLess(comparison.values[0].error, 1e-4)
            self.assertGreater(comparison.samples, 60)
        self.assertEqual(kaanimation.validate(self.folder / "a.xml", self.folder / "a.osg"), [])

    def test_a_comparison_finds_the_curve_that_was_bent(self):
        summary = self.project.summary()
        self.curve.keys[5].value += 3
        comparison = kaanimation.compare(summary, self.project.summary())
        worst = comparison.values[0]
        self.assertEqual((worst.node, worst.attribute), ("Arm", "rotationZ"))
        self.assertEqual((worst.frame, worst.error), (5, 3))

    def test_names_that_lead_nowhere_are_refused_before_the_work(self):
        for paths in ((), ("a.png",), ("a.xml", "b.xml")):
            with self.assertRaises(kaanimation.UsageError):
                self.project.save(*paths)
        with self.assertRaises(kaanimation.OutputError):
            self.project.save(self.folder / "no" / "such.xml")

    def test_a_broken_document_is_described_line_by_line(self):
        document = self.folder / "broken.xml"
        self.project.save(document)
        text = document.read_text("latin-1")
        document.write_text(text.replace('valuePos="0"', 'valuePos="x"', 1), "latin-1")
        findings = kaanimation.validate(document)
        self.assertEqual([finding.element for finding in findings], ["field"])
        self.assertEqual(findings[0].line, 1 + text[: text.index('valuePos="0"')].count("\n"))
        self.assertTrue(findings[0].message)

    def test_another_file_is_merged_on_purpose(self):
        self.project.save(self.folder / "a.xml")
        self.project.merge(kaanimation.example())
        self.assertEqual(len(self.project.clips), 2)
        self.assertEqual(len(self.project.scene.find_all("Arm")), 2)
        self.project.merge(self.folder / "a.xml")
        self.assertEqual(len(self.project.clips), 3)
        with self.assertRaises(kaanimation.FileError):
            self.project.merge("nowhere.bvh")

    def test_pictures(self):
        self.project.draw_curves(self.folder / "curves.png")
        self.project.draw_figure(self.folder / "figure.png", 3)
        for name in ("curves", "figure"):
            self.assertEqual((self.folder / f"{name}.png").read_bytes()[:4], b"\x89PNG")
        with self.assertRaises(kaanimation.UsageError):
            self.project.draw_curves(self.folder / "a.jpg")
        with self.assertRaises(kaanimation.UsageError):
            self.project.draw_curves(self.folder / "a.png", ["nothing"])

    def test_an_archive_holds_what_sampling_gives(self):
        self.project.export(self.folder / "a.npz")
        samples = self.clip.sample(range(11))
        with np.load(self.folder / "a.npz") as archive:
            columns = {str(name): index for index, name in enumerate(archive["names"])}
            for name in samples.names:
                np.testing.assert_array_equal(archive["values"][:, columns[name]], samples[name])
        for kind in ("glb", "gltf", "bvh", "csv"):
            self.project.export(self.folder / f"a.{kind}")
            self.assertGreater((self.folder / f"a.{kind}").stat().st_size, 100)
        with self.assertRaises(kaanimation.UsageError):
            self.project.export(self.folder / "a.fbx")


if __name__ == "__main__":
    unittest.main()
