"""What a host answers and is told, as Python functions: cameras, jumps, blur, simulation, pasting."""

import traceback
import unittest

import numpy as np

import kaanimation
from rig import Rig


class Hosts(Rig):
    def setUp(self):
        super().setUp()
        self.host = self.project.host
        self.told = []

    def tell(self, *what):
        self.told.append(what)

    def test_a_camera_is_asked_and_moved(self):
        self.assertEqual(self.host.view, ((0, 0, 0),) * 3)
        self.host.on_get_view = lambda camera: ((1, 2, 3), (4, 5, camera), (0, 1, 0))
        self.host.on_set_view = self.tell
        self.host.on_get_roll = lambda camera: 0.5
        self.host.on_set_roll = self.tell
        self.assertEqual(self.host.view, ((1, 2, 3), (4, 5, -1), (0, 1, 0)))
        self.assertEqual(self.host.roll, 0.5)
        self.host.view = ((9, 8, 7), (0, 0, 0), (0, 1, 0))
        self.host.roll = 2
        self.assertEqual(self.told, [(-1, (9, 8, 7), (0, 0, 0), (0, 1, 0)), (-1, 2.0)])

    def test_jumps_tell_every_editor_of_the_host(self):
        order = ["on_time_line_frame", "on_curve_editor_frame", "on_clip_editor_frame"]
        for name in order:
            setattr(self.host, name, lambda frame, name=name: self.tell(name, frame))
        self.project.player.jump_to_end(self.clip)
        self.assertEqual(self.told, [(name, 10.0) for name in order])
        self.told.clear()
        self.project.player.jump_to_begin(self.clip)
        self.assertEqual([frame for _, frame in self.told], [0.0] * 3)

    def test_blur_moves_by_the_shutter_and_back(self):
        player, arm = self.project.player, self.project.scene.find("Arm")
        for curve in self.project.curves:
            curve.motion_blur = True
        self.clip.motion_blur = True
        player.edit(self.clip)
        player.jump(2)
        still = arm.rotation
        player.blur(1) # nobody has told how fast the shutter is
        self.assertEqual(arm.rotation, still)
        self.host.shutter_speed = lambda: 10
        self.host.on_navigate = self.tell
        player.blur(1) # 25 frames a second / 10: to frame 4.5
        moved = arm.rotation
        self.assertAlmostEqual(moved[2], self.curve.value_at(4.5), places=4)
        self.assertEqual(len(self.told), 1)
        player.end_blur()
        self.assertEqual(arm.rotation, still)

    def test_the_simulation_rests_while_an_event_fires(self):
        track = self.project.create_track("events")
        track.add(self.project.create_sequence("bang", 3, 4))
        self.assertEqual([event.name for event in track.events], ["bang"])
        self.host.is_simulating = lambda: True
        self.host.on_simulate = lambda on: self.tell("simulate", on)
        self.project.player.on_sequence = lambda name: self.tell("event", name)
        self.project.evaluate(3.5, [track])
        self.assertEqual(self.told, [("simulate", False), ("event", "bang"), ("simulate", True)])

    def test_pasting_and_showing_are_told(self):
        self.host.on_paste = self.tell
        self.host.on_show_curves = self.tell
        self.project.copy(self.clip.curves)
        self.assertEqual(self.told, [(True,)])
        self.assertEqual(len(self.project.copied), 6)
        self.project.clear_copied()
        self.assertEqual(self.told, [(True,), (False,)])
        self.host.show_curves([self.curve])
        self.assertEqual(self.told[-1], ([self.curve],))

    def test_what_a_function_of_the_host_raises_comes_out_with_its_traceback(self):
        def refuse(frame):
            raise LookupError(f"no frame {frame}")

        self.host.on_time_line_frame = refuse
        try:
            self.project.player.jump_to_end(self.clip)
            self.fail("nothing was raised")
        except LookupError as error:
            self.assertEqual(str(error), "no frame 10.0")
            self.assertEqual(traceback.extract_tb(error.__traceback__)[-1].name, "refuse")
        self.host.on_time_line_frame = None
        self.project.player.jump_to_end(self.clip)
        self.host.on_get_view = lambda camera: "nothing of the kind"
        with self.assertRaises(RuntimeError):
            self.host.view
        with self.assertRaises(TypeError):
            self.host.on_paste = 3

    def test_functions_go_with_their_project(self):
        self.host.on_get_roll = lambda camera: 7
        self.project.close()
        with self.assertRaises(kaanimation.ClosedError):
            self.host.roll
        with kaanimation.open(kaanimation.example()) as project:
            self.assertEqual(project.host.roll, 0)

    def test_reading_a_document_tells_how_far_it_is(self):
        self.host.on_file_progress = self.tell
        self.project.load(self.project.document())
        percents = [percent for (percent,) in self.told]
        self.assertTrue(percents)
        self.assertLessEqual(max(percents), 100)

    def test_what_is_paused_stands_still(self):
        player = self.project.player
        player.play([self.clip])
        player.advance(0.1)
        frame = player.frame
        self.assertEqual(player.full_frame, int(frame))
        player.paused = True
        player.advance(0.1)
        self.assertEqual((player.paused, player.frame), (True, frame))
        player.paused = False
        player.advance(0.04)
        self.assertGreater(player.frame, frame)

    def test_the_timeline_says_how_it_runs(self):
        player = self.project.player
        player.play([self.clip], begin=2, end=8, start=3, repeat=True)
        self.assertEqual((player.begin, player.end, player.start_frame, player.repeat, player.reverse),
                         (2, 8, 3, True, False))
        player.stop()
        player.start(self.clip)
        self.assertEqual(player.waiting, [self.clip])
        player.advance(0)
        self.assertEqual((player.waiting, player.running), ([], [self.clip]))
        player.advance(0.08)
        player.pause_object(self.clip)
        held = self.clip.last_frame
        player.advance(0.08)
        self.assertEqual(self.clip.last_frame, held)
        player.pause_object(self.clip, False)
        player.advance(0.04)
        self.assertGreater(self.clip.last_frame, held)
        player.reset(self.clip)
        self.assertEqual(player.running, [])
        self.assertEqual(self.project.scene.find("Arm").rotation[2], np.float32(self.curve.value_at(0)))
        player.go_to_end(self.clip)
        self.assertEqual(self.project.scene.find("Arm").rotation[2], np.float32(self.curve.value_at(10)))
        player.every_frame = True
        self.assertTrue(player.every_frame)


if __name__ == "__main__":
    unittest.main()
