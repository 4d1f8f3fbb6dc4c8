"""Every public name of the package against the libraries themselves, and none left out.

What can be read is compared with what C++ reads at every object of real captures; what changes something is done once
by the package and once by C++, each on the same files, and the documents and scenes that come out are the same.
"""

import inspect
import pathlib
import re
import tempfile
import unittest

import ka_plain
import numpy as np

import kaanimation
from kaanimation import _core
from rig import CAPTURES

# Compared elsewhere, by what is known of the result: the test that does.
ELSEWHERE = {
    "Block.__iter__": "test_reading: test_lists_can_be_sliced_and_counted",
    "Object.sample": "test_arrays: test_every_sample_is_the_player_s_own_float",
    "Object.record_skeleton": "test_motion: test_a_skeleton_is_plain_numbers",
    "Curve.get_keys": "test_arrays: test_keys_out_and_in_give_the_same_curve",
    "Curve.key_at": "test_editing: test_keys_can_be_added_split_and_removed",
    "Curve.value_at": "test_plain: test_values_at_frames_are_those_of_the_controller",
    "Curve.neighbours": "test_editing: test_keys_may_go_where_there_is_room",
    "Curve.may_insert": "test_editing: test_keys_may_go_where_there_is_room",
    "Curve.may_move": "test_editing: test_keys_may_go_where_there_is_room",
    "Node.field": "test_editing: test_fields_read_and_write_the_scene",
    "Node.add_child": "test_editing: test_a_scene_built_from_nothing_but_names",
    "Node.destroy": "test_reading: test_nodes_that_went_raise_too",
    "Node.may_take": "test_editing: test_one_block_of_a_node_plays_alone",
    "Scene.find": "test_reading: test_the_scene_is_found_by_name_path_and_pattern",
    "Scene.find_all": "test_reading: test_the_scene_is_found_by_name_path_and_pattern",
    "Scene.root": "test_editing: test_a_scene_built_from_nothing_but_names",
    "Scene.placed_nodes": "test_arrays: test_positions_are_those_of_nodes_evaluated_one_by_one",
    "Project.is_open": "test_reading: test_everything_of_a_closed_project_raises",
    "Project.scene": "test_plain: test_nodes_read_as_in_cpp",
    "Project.player": "test_playing: test_a_clock_of_the_script_takes_over",
    "Project.host": "test_host: test_a_camera_is_asked_and_moved",
    "Project.objects": "test_plain: test_the_registry_reads_as_in_cpp",
    "Project.telling_curves": "test_motion: test_what_is_worked_on_is_chosen_by_names",
    "Project.connections": "test_editing: test_connections_are_listed",
    "Project.file": "test_editing: test_a_scene_is_exchanged_for_another",
    "Project.report": "test_editing: test_what_became_of_a_model_is_told",
    "Project.notes": "test_plain: test_imports_are_told_as_the_command_line_tells_them",
    "Project.faults": "test_plain: test_imports_are_told_as_the_command_line_tells_them",
    "Project.frame_range": "test_plain: test_the_registry_reads_as_in_cpp",
    "Project.playable": "test_plain: test_the_registry_reads_as_in_cpp",
    "Project.select_curves": "test_motion: test_what_is_worked_on_is_chosen_by_names",
    "Project.select_clips": "test_motion: test_what_is_worked_on_is_chosen_by_names",
    "Project.close": "test_reading: test_everything_of_a_closed_project_raises",
    "Project.save": "test_editing: test_what_is_saved_is_opened_again_as_it_was",
    "Project.merge": "test_editing: test_another_file_is_merged_on_purpose",
    "Project.exchange_scene": "test_editing: test_a_scene_is_exchanged_for_another",
    "Project.document": "test_plain: test_the_registry_reads_as_in_cpp",
    "Project.export": "test_editing: test_one_motion_or_all_clips_are_handed_on_and_the_rest_is_told",
    "Project.world_positions": "test_arrays: test_positions_are_those_of_nodes_evaluated_one_by_one",
    "Project.fire": "test_playing: test_a_function_may_be_connected_and_may_call_back",
    "Project.summary": "test_editing: test_a_comparison_finds_the_curve_that_was_bent",
    "Project.upgrade": "test_upgrade: test_an_older_scene_becomes_what_the_command_line_makes_of_it",
    "Project.draw_curves": "test_editing: test_pictures",
    "Project.draw_figure": "test_editing: test_pictures",
    "Project.add_attribute": "test_editing: test_attributes_count_as_animatable_once_they_are_named",
    "Project.remove_attribute": "test_editing: test_attributes_count_as_animatable_once_they_are_named",
}
# Classes that tests of their own go through name by name.
WHOLE = {"Player": "test_playing", "Host": "test_host", "Report": "test_motion", "Measure": "test_motion",
         "Joint": "test_motion", "Skeleton": "test_motion", "Listener": "test_playing",
         "Finding": "test_editing", "Summary": "test_editing", "Difference": "test_editing",
         "CurveError": "test_editing", "Comparison": "test_editing"}


def told(value):
    """The package's value as C++ tells it: ids for objects."""
    if value is None:
        return 0
    if isinstance(value, (_core.Object, _core.Node, _core.Field)):
        return value.id
    if isinstance(value, np.ndarray):
        return value.tolist()
    if isinstance(value, list):
        return [told(entry) for entry in value]
    return value


def members(kind) -> list[str]:
    return [name for name in vars(kind) if not name.startswith("_")]


class Reading(unittest.TestCase):
    MODELS = [kaanimation.example(), CAPTURES.parent / "glTF2/glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf",
              CAPTURES.parent / "FBX/animation_with_skeleton.fbx"]

    def each_model(self, look):
        for path in self.MODELS:
            if path.exists():
                with self.subTest(path.name), kaanimation.open(path) as project:
                    clip = project.clips[0]
                    clip.custom_range = (1, 5)
                    clip.curves[0].keys[1].selected = True
                    clip.curves[-1].repeating = True
                    clip.blocks[0].flip()
                    track = project.create_track("events")
                    track.add(project.create_sequence("top", 3, 4))
                    look(project)

    def assert_reads(self, wrapper, expected):
        names = {name for kind in type(wrapper).__mro__ if kind is not object for name in members(kind)
                 if isinstance(getattr(kind, name), property)}
        self.assertEqual(names - set(expected), set(), "C++ tells nothing of these")
        for name in names:
            value = told(getattr(wrapper, name))
            wanted = expected[name]
            if name == "driven_fields": # container by container
                value, wanted = sorted(value), sorted(wanted)
            self.assertEqual(value, 0 if wanted is None else wanted, f"{wrapper!r}.{name}")

    def test_objects_read_as_in_cpp(self):
        def look(project):
            kinds = set()
            for top in project.objects:
                pending = [top]
                while pending:
                    wrapper = pending.pop()
                    kinds.add(type(wrapper).__name__)
                    self.assert_reads(wrapper, ka_plain.tell_object(wrapper.id))
                    pending += wrapper.children
                    if isinstance(wrapper, _core.Curve):
                        pending += wrapper.keys[:3]
            self.assertEqual(kinds, {"Clip", "Track", "Block", "Curve", "Key", "Sequence"})

        self.each_model(look)

    def test_nodes_read_as_in_cpp(self):
        def look(project):
            for node in project.scene.nodes:
                self.assert_reads(node, ka_plain.tell_node(node.id))
                for field in node.fields:
                    self.assert_reads(field, ka_plain.tell_field(field.id))

        self.each_model(look)

    def test_the_registry_reads_as_in_cpp(self):
        def look(project):
            project.copy(project.clips)
            expected = ka_plain.tell_registry(project.scene.root.id)
            self.assertEqual(project.document(), expected.pop("document"))
            self.assertEqual([node.id for node in project.scene.nodes], expected.pop("nodes"))
            for name, value in expected.items():
                self.assertEqual(told(getattr(project, name)), value, name)
            self.assertEqual({top.id for top in project.objects} & {clip.id for clip in project.clips},
                             {clip.id for clip in project.clips})
            clip = min(project.clips, key=lambda clip: clip.name)
            self.assertIn(clip, project.playable())
            self.assertEqual(project.frame_range[1], max(part.end for part in project.playable()))

        self.each_model(look)

    def test_values_at_frames_are_those_of_the_controller(self):
        def look(project):
            for curve in project.clips[0].curves:
                frames = [curve.begin - 1, curve.begin, 0.3, 7.75, curve.end, curve.end + 9]
                wanted = np.array(ka_plain.sample(curve.id, frames), np.float32)
                values = [np.nan if value is None else value for value in map(curve.value_at, frames)]
                np.testing.assert_array_equal(np.array(values, np.float32), wanted)
                np.testing.assert_array_equal(curve.sample(frames, hold=False).values[:, 0], wanted)

        self.each_model(look)

    def test_imports_are_told_as_the_command_line_tells_them(self):
        import json
        import subprocess

        from rig import KA_ANIM

        if not KA_ANIM:
            self.skipTest("the command line is not built")
        for path in filter(pathlib.Path.exists, self.MODELS):
            text = subprocess.run([KA_ANIM, "import", path, "--json"], capture_output=True, text=True).stdout
            wanted = json.loads(text)
            with kaanimation.open(path) as project:
                report = project.report
                for name in members(_core.ImportReport):
                    key = re.sub("_(.)", lambda match: match.group(1).upper(), name)
                    value = getattr(report, name)
                    if isinstance(value, float):
                        self.assertAlmostEqual(value, wanted[key], delta=abs(value) * 1e-3 + 1e-9, msg=name)
                    else:
                        self.assertEqual(value, wanted[key], name)
                self.assertEqual(project.notes, report.notes)
                self.assertEqual(project.faults, report.faults)


# Each: the method, and what it is called with; strings that name something of the project stand for it.
CASES = {
    "Object.move": ("clip", dict(offset=3.5)),
    "Object.move_begin": ("clip", dict(frame=-4)),
    "Object.move_end": ("clip", dict(frame=17)),
    "Object.trim_begin": ("block", dict(frame=2)),
    "Object.trim_end": ("block", dict(frame=7)),
    "Object.flip": ("clip", {}),
    "Object.destroy": ("block", {}),
    "Object.duplicate": ("clip", {}),
    "Object.reduce": ("clip", dict(rotation=2, world=0.5, shortest_hold=2)),
    "Object.smooth": ("clip", dict(cut_off=4, frames_per_second=30)),
    "Object.remove_flips": ("clip", {}),
    "Object.remove_peaks": ("clip", dict(reach=2, sensitivity=1, least=0.1)),
    "Object.change_values": ("clip", dict(factor=-2, offset=0.5)),
    "Object.trim": ("clip", dict(begin=2.5, end=7, to_start=True)),
    "Object.retime": ("clip", dict(scale=1.5, shift=2, map=[(0, 0), (5, 8), (10, 10)], speed=[(0, 1), (10, 2)])),
    "Object.play_backwards": ("clip", {}),
    "Object.resample": ("clip", dict(every=3, shape="straight", keep_ends=False)),
    "Object.loop": ("clip", dict(seam=4, root="kept")),
    "Object.mirror": ("clip", dict(axis=2, sides=[("Arm", "Hand")])),
    "Curve.add_key": ("curve", dict(frame=5, value=-1, replace=True)),
    "Curve.split": ("curve", dict(frame=4.5)),
    "Curve.remove_keys": ("curve", dict(begin=2, end=6)),
    "Curve.move_selected": ("curve", dict(frames=2, value=1)),
    "Curve.set_selected_tangents": ("curve", dict(type=kaanimation.Tangent.FLAT)),
    "Curve.remove_selected": ("curve", {}),
    "Curve.set_keys": ("curve", dict(keys=[[0, 1], [4, -2], [9, 3]])),
    "Block.add": ("block", dict(child="loose")),
    "Block.remove": ("block", dict(child="curve")),
    "Block.activate_alone": ("door_block", {}),
    "Track.add": ("track", dict(child="door_block")),
    "Track.insert": ("track", dict(child="late_block")),
    "Track.remove": ("track", dict(child="block")),
    "Clip.add": ("clip", dict(child="late_block")),
    "Clip.insert": ("clip", dict(child="late_block")),
    "Clip.remove": ("clip", dict(child="track")),
    "Clip.remove_empty_tracks": ("hollow", {}),
    "Node.list_object": ("door", dict(object="loose")),
    "Node.unlist_object": ("door", dict(object="door_block")),
    "Node.destroy_animation": ("arm", dict(recursive=True)),
    "Node.find_fields_again": ("door", {}),
    "Project.create_clip": ("project", dict(name="new")),
    "Project.create_track": ("project", dict(name="new")),
    "Project.create_block": ("project", dict(curve="loose", name="new")),
    "Project.create_curve": ("project", dict(node="door", attribute="scaleZ")),
    "Project.create_sequence": ("project", dict(name="new", begin=1, end=2)),
    "Project.merge_clips": ("project", dict(a="clip", b="other", cross_fade=3, name="both", remove_sources=True)),
    "Project.split_clip": ("project", dict(clip="clip", frames=[3, 7], keep=True)),
    "Project.copy_clip": ("project", dict(clip="clip", name="copy")),
    "Project.remove_clips": ("project", dict(clip="clip")),
    "Project.remove_curves": ("project", dict(curve="curve")),
    "Project.rename_nodes": ("project", dict(match="H*", to="Left*")),
    "Project.sweep": ("project", {}),
    "Project.destroy_all": ("project", {}),
    "Project.complete_fields": ("project", {}),
    "Project.ensure_unique_attributes": ("project", {}),
    "Project.copy": ("project", dict(object="clip")),
    "Project.paste": ("project", dict(source="door", node="gate")),
    "Project.clear_copied": ("project", dict(object="clip", destroy=False)),
    "Project.paste_to": ("project", dict(source="door", pattern="g*")),
    "Project.move_to_track": ("project", dict(object="block", clip="clip", number=3)),
    "Project.connect": ("project", dict(source="clip", target="block", trigger=1, action=1)),
    "Project.load": ("project", dict(text="document")),
    "Project.evaluate": ("project", dict(object="clip", frame=6.5)),
    "Project.retarget": ("project", dict(object="clip", clip="retargeted")),
}
# Methods that take their arguments otherwise than by those names, or need something done before.
BY_HAND = {
    "Curve.move_selected": lambda curve, **given: (setattr(curve, "selected", True), curve.move_selected(**given)),
    "Curve.set_selected_tangents": lambda curve, type: (setattr(curve, "selected", True),
                                                        curve.set_selected_tangents(type)),
    "Curve.remove_selected": lambda curve: (setattr(curve.key_at(3), "selected", True), curve.remove_selected()),
    "Curve.set_keys": lambda curve, keys: curve.set_keys(np.array(keys)),
    "Project.create_block": lambda project, curve, name: project.create_block(name, [curve]),
    "Project.merge_clips": lambda project, a, b, **given: project.merge_clips([a, b], **given),
    "Project.remove_clips": lambda project, clip: project.remove_clips([clip]),
    "Project.remove_curves": lambda project, curve: project.remove_curves([curve]),
    "Project.copy": lambda project, object: project.copy([object]),
    "Project.paste": lambda project, source, node: (project.copy(source), project.paste(node)),
    "Project.clear_copied": lambda project, object, destroy: (project.copy([object]),
                                                              project.clear_copied(destroy=destroy)),
    "Project.evaluate": lambda project, object, frame: project.evaluate(frame, [object]),
    "Project.retarget": lambda project, object, clip: project.retarget(object.record_skeleton(), clip=clip),
}


class Doing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.files = pathlib.Path(folder.name, "swing.osg"), pathlib.Path(folder.name, "swing.xml")
        with kaanimation.open(kaanimation.example()) as project:
            root = project.scene.root
            for name in ("door", "gate"):
                root.add_child(name)
            door = project.scene.find("door")
            blocks = []
            for begin in (0, 30):
                curve = project.create_curve(door, "rotationY")
                curve.set_keys(np.array([[begin, 0], [begin + 20, 90]]))
                blocks.append(project.create_block(f"from {begin}", [curve]))
            loose = project.create_curve(project.scene.find("Arm"), "translationX")
            loose.set_keys(np.array([[0, 1], [5, 3]]))
            loose.name = "loose"
            hollow = project.create_clip("hollow")
            hollow.add(project.create_track("empty"))
            project.copy_clip(project["swing"], "other")
            cls.document = project.document()
            project.save(*cls.files)

    def named(self, project):
        scene, by_name = project.scene, {clip.name: clip for clip in project.clips}
        clip = by_name["swing"]
        return {"project": project, "clip": clip, "other": by_name["other"], "hollow": by_name["hollow"],
                "track": clip.tracks[0], "block": clip.tracks[0].blocks[0], "curve": clip.tracks[0].blocks[0].curves[0],
                "door": scene.find("door"), "gate": scene.find("gate"), "arm": scene.find("Arm"),
                "door_block": project["from 0"], "late_block": project["from 30"], "loose": project["loose"],
                "document": self.document}

    def state(self, project):
        nodes = [(node.path, node.translation, node.rotation, node.scale, [part.id for part in node.objects])
                 for node in project.scene.nodes]
        numbers = {} # of containers, which are others each time
        document = re.sub(r'(\w*ID=)"(\d{1,7})"', lambda place: place[1] + str(numbers.setdefault(place[2], len(numbers))),
                          project.document())
        nodes += [(part.id, part.begin, part.end) for clip in project.clips for part in clip.blocks]
        return document, nodes, [part.id for part in project.copied], \
            [(target and target.id, action) for _, target, action in project.connections[-1:]]

    def test_methods_do_as_in_cpp(self):
        self.maxDiff = 2000
        unchanged = {"Object.remove_flips", "Project.complete_fields", "Project.ensure_unique_attributes"}
        for name, (subject, given) in CASES.items():
            with self.subTest(name):
                with kaanimation.open(*self.files) as project:
                    names = self.named(project)
                    before = self.state(project)
                    ka_plain.seed(7)
                    arguments = {key: names.get(value, value) if isinstance(value, str) else value
                                 for key, value in given.items()}
                    method = name.split(".")[1]
                    call = BY_HAND.get(name, lambda on, **rest: getattr(on, method)(**rest))
                    call(names[subject], **arguments)
                    ours = self.state(project)
                with kaanimation.open(*self.files) as project:
                    names = self.named(project)
                    arguments = {}
                    if subject != "project":
                        arguments["self"] = names[subject].id
                    for key, value in given.items():
                        found = names.get(value, value) if isinstance(value, str) else value
                        arguments[key] = getattr(found, "id", found)
                    arguments["root"] = project.scene.root.id
                    ka_plain.seed(7)
                    ka_plain.perform(name, arguments)
                    theirs = self.state(project)
                self.assertEqual(ours, theirs)
                self.assertEqual(ours == before, name in unchanged, "whether it does anything")

    def test_cpp_does_nothing_that_is_not_compared(self):
        self.assertEqual(set(ka_plain.names()), set(CASES))


class Whole(unittest.TestCase):
    def test_no_public_name_is_left_out(self):
        read = {"Object": {"id", "is_alive"}}
        missing = []
        for kind_name in dir(kaanimation):
            kind = getattr(kaanimation, kind_name)
            if not inspect.isclass(kind) or getattr(_core, kind_name, None) is not kind or kind_name in WHOLE or \
                    kind_name == "ImportReport": # all of it, by test_imports_are_told_as_the_command_line_tells_them
                continue
            for name in members(kind):
                whole = f"{kind_name}.{name}"
                is_read = isinstance(getattr(kind, name), property) and kind_name not in ("Project", "Scene")
                in_registry = kind_name in ("Project", "Scene") and name in (
                    "clips", "blocks", "active_blocks", "curves", "object_count", "attributes", "copied", "nodes")
                if not (is_read or in_registry or whole in CASES or whole in ELSEWHERE):
                    missing.append(whole)
        self.assertEqual(missing, [])
        self.assertTrue(read)

    def test_the_tests_that_are_named_are_there(self):
        here = pathlib.Path(__file__).parent
        for name, place in ELSEWHERE.items():
            file, test = place.split(": ")
            text = (here / f"{file}.py").read_text()
            self.assertIn(f"def {test}(", text, name)
        for kind, file in WHOLE.items():
            text = "".join(path.read_text() for path in here.glob("test_*.py") if path.stem != "test_types")
            for name in members(getattr(_core, kind)):
                self.assertRegex(text, rf"\b{name}\b", f"{kind}.{name} is in no test")


if __name__ == "__main__":
    unittest.main()
