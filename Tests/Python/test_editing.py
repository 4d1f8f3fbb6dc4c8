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

    def test_keys_may_go_where_there_is_room(self):
        before, after = self.curve.neighbours(4)
        self.assertEqual((before.frame, after.frame), (3, 5))
        self.assertEqual(self.curve.neighbours(-1), (None, self.curve.keys[0]))
        self.assertTrue(self.curve.may_insert(20))
        key = self.curve.keys[-1]
        self.assertTrue(self.curve.may_move(key, 5))
        self.assertFalse(self.curve.may_move(key, -5))
        key.selected = True
        self.curve.move_selected(5, 1)
        self.assertEqual((key.frame, key.selected), (15, True))
        self.curve.set_selected_tangents(Tangent.FLAT)
        self.assertEqual(key.tangent, Tangent.FLAT)
        self.assertEqual(self.curve.remove_selected(), 1)
        self.assertEqual(self.curve.end, 9)

    def test_ranges_of_playing_and_fields(self):
        self.assertEqual(self.clip.play_range, (0, 10))
        self.clip.custom_range = (2, 8)
        self.assertEqual(self.clip.play_range, (2, 8))
        field = self.project.scene.find("Arm").field("translationZ")
        self.assertEqual((field.name, field.attribute, field.component), ("translation", "translationZ", 2))


class Registry(Rig):
    def test_a_document_goes_out_and_in_as_text(self):
        text = self.project.document()
        self.assertTrue(text.startswith("<"))
        self.assertEqual(text, self.project.document())
        self.project.load(text)
        self.assertEqual(len(self.project.clips), 2)
        count = self.project.object_count
        with self.assertRaises(kaanimation.FileError) as caught:
            self.project.load("<AnimationPool>\n<curve>\n</AnimationPool>\n")
        self.assertEqual(caught.exception.line, 3)
        with self.assertRaises(kaanimation.FileError):
            self.project.load("")
        self.assertEqual(self.project.object_count, count)

    def test_what_no_node_lists_is_swept(self):
        lost = self.project.create_block("lost", attach=False)
        self.assertEqual(self.project.sweep(), 1)
        self.assertFalse(lost.is_alive)
        self.assertTrue(self.clip.is_alive)
        self.assertEqual(self.project.active_blocks, [])

    def test_one_block_of_a_node_plays_alone(self):
        door = self.project.scene.root.add_child("door")
        blocks = []
        for name in ("open", "close"):
            curve = self.project.create_curve(door, "rotationY")
            curve.set_keys(np.array([[0, 0], [25, 90]]))
            blocks.append(self.project.create_block(name, [curve]))
        blocks[1].activate_alone()
        self.assertEqual([block.active for block in blocks], [False, True])
        self.assertEqual(self.project.active_blocks, [blocks[1]])
        self.assertEqual([field.attribute for field in door.driven_fields], ["rotationY", "rotationY"])
        door.unlist_object(blocks[0])
        self.assertNotIn(blocks[0], door.objects)
        with self.assertRaises(kaanimation.RefusedError):
            door.unlist_object(blocks[0])
        door.list_object(blocks[0])
        self.assertIn(blocks[0], door.objects)
        self.assertTrue(door.may_take(blocks[0]))

    def test_attributes_count_as_animatable_once_they_are_named(self):
        self.assertNotIn("travMask", self.project.attributes)
        self.project.add_attribute("travMask")
        self.assertIn("travMask", self.project.attributes)
        node = self.project.scene.root.add_child("node")
        before = len(node.fields)
        self.assertEqual(len(node.find_fields_again()), before)
        self.project.remove_attribute("travMask")
        with self.assertRaises(kaanimation.UsageError):
            self.project.remove_attribute("travMask")
        self.project.complete_fields()
        self.project.ensure_unique_attributes()
        self.assertEqual(self.project.world_positions([5]).shape[0], 1)

    def test_connections_are_listed(self):
        self.project.connect(self.curve, kaanimation.Trigger.END, self.clip, kaanimation.Action.STOP)
        ((_, target, action),) = self.project.connections
        self.assertEqual((target, kaanimation.Action(action)), (self.clip, kaanimation.Action.STOP))

    def test_everything_can_go_at_once(self):
        self.project.destroy_all()
        self.assertLessEqual(self.project.object_count, 1, "the last stays where it stands by itself")
        self.assertEqual(self.project.curves, [])

    def test_the_open_project_is_found(self):
        self.assertIs(kaanimation.current(), self.project)
        self.project.close()
        self.assertIsNone(kaanimation.current())


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

    def test_one_motion_or_all_clips_are_handed_on_and_the_rest_is_told(self):
        other = self.project.copy_clip(self.clip, "another")
        other.change_values(0, 33)
        notes = self.project.export(self.folder / "a.npz")
        self.assertIn("1 clip", notes[-1])
        with np.load(self.folder / "a.npz") as archive:
            self.assertEqual(set(np.unique(archive["values"])), {np.float32(33)}, "the first by name, as it plays")
        self.project.export(self.folder / "b.npz", [self.clip])
        with np.load(self.folder / "b.npz") as archive:
            self.assertEqual(archive["values"].max(), 90)
        self.assertNotIn("left out", str(self.project.export(self.folder / "a.glb")))
        self.assertEqual((self.folder / "a.glb").read_bytes().count(b'"another"'), 1)

    def test_rotations_of_a_capture_take_the_order_asked_for(self):
        positions = self.project.world_positions([0, 3, 7])
        names = [node.name for node in self.project.scene.placed_nodes]
        for order in ("XYZ", "YXZ"):
            self.project.export(self.folder / f"{order}.bvh", rotation_order=order)
            channels = " ".join(f"{axis}rotation" for axis in order)
            self.assertIn(channels, (self.folder / f"{order}.bvh").read_text())
        with self.assertRaises(kaanimation.UsageError):
            self.project.export(self.folder / "a.bvh", rotation_order="XXY")
        self.project.close()
        with kaanimation.open(self.folder / "YXZ.bvh") as project:
            hand = [node.name for node in project.scene.placed_nodes].index("Hand")
            again = project.world_positions([0, 3, 7])
        np.testing.assert_allclose(again[:, hand], positions[:, names.index("Hand")], atol=1e-3)

    def test_a_scene_is_exchanged_for_another(self):
        self.project.save(self.folder / "a.osg")
        self.project.exchange_scene(self.folder / "a.osg")
        self.assertTrue(self.clip.is_alive)
        self.assertTrue(self.project.file.endswith("a.osg"))
        with self.assertRaises(kaanimation.FileError):
            self.project.exchange_scene(self.folder / "b.osg")

    def test_what_became_of_a_model_is_told(self):
        report = self.project.report
        self.assertEqual((report.clips, report.blocks, report.curves, report.keys, report.faults), (1, 2, 6, 66, []))
        self.project.close()
        with kaanimation.open(kaanimation.example(), unit=2, frames_per_second=50) as project:
            self.assertEqual(project.scene.find("Hand").translation, [20, 0, 0])
            self.assertEqual(project.clips[0].end, 20)
        with kaanimation.open(kaanimation.example(), z_up=True) as project:
            # z up becomes y up: the axis that the arm swings about is y then.
            hand = project.scene.find("Hand")
            np.testing.assert_allclose(project.world_positions([5], nodes=[hand])[0, 0], [0, 0, -10], atol=1e-4)
        with self.assertRaises(kaanimation.Error):
            kaanimation.open(kaanimation.example(), take="no such")


if __name__ == "__main__":
    unittest.main()
