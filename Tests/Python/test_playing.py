"""The player by its own clock, messages, events, and what callbacks raise."""

import gc
import traceback
import unittest
import weakref

import kaanimation
from rig import Rig


class Playing(Rig):
    def test_half_a_second_is_half_of_the_frames_of_a_second(self):
        player = self.project.player
        player.play()
        self.assertTrue(player.playing)
        self.assertAlmostEqual(player.advance(0.2), 5.0, places=4)
        self.assertAlmostEqual(self.project.scene.find("Arm").rotation[2], 90.0, places=2)
        player.advance(0.3)
        self.assertFalse(player.playing, "eleven frames are over after ten times 0.04 seconds")

    def test_another_rate_a_part_and_backwards(self):
        player = self.project.player
        player.fps = 10
        player.play([self.clip], begin=2, end=8, reverse=True)
        self.assertAlmostEqual(player.advance(0.1), 7.0, places=4)
        player.stop()
        self.assertFalse(player.playing)

    def test_a_clock_of_the_script_takes_over(self):
        seconds = [0.0]
        player = self.project.player
        player.clock = lambda: seconds[0]
        player.play()
        seconds[0] = 0.2
        self.assertTrue(player.tick())
        self.assertAlmostEqual(player.frame, 5.0, places=4)
        with self.assertRaises(kaanimation.RefusedError):
            player.advance(1)
        with self.assertRaises(TypeError):
            player.clock = 3

    def test_what_repeats_goes_on(self):
        player = self.project.player
        player.play(repeat=True)
        for _ in range(100):
            player.advance(0.05)
        self.assertTrue(player.playing)

    def test_a_block_plays_by_itself_and_its_end_starts_another(self):
        player = self.project.player
        first, second = self.block, self.clip.blocks[1]
        self.project.connect(first, kaanimation.Trigger.END, second)
        player.start(first)
        player.advance(0)
        self.assertEqual(player.running, [first])
        for _ in range(12):
            player.advance(0.04)
        self.assertIn(second, player.running)

    def test_the_player_of_the_next_project_starts_over(self):
        player = self.project.player
        player.fps = 50
        player.play()
        player.advance(0.1)
        self.project.close()
        with self.assertRaises(kaanimation.ClosedError):
            player.frame
        with kaanimation.open(kaanimation.example()) as project:
            self.assertEqual((project.player.fps, project.player.time, project.player.frame), (25.0, 0.0, 0.0))
            self.assertFalse(project.player.playing)


class Messages(Rig):
    def test_every_tick_is_told_with_its_frame(self):
        told = []
        with kaanimation.listen("currentFrameChanged", lambda name, values: told.append(values["frame"])):
            self.project.player.play()
            self.project.player.advance(0.08)
            self.project.player.advance(0.08)
        self.project.player.advance(0.08)
        self.assertEqual([round(frame, 3) for frame in told], [0.0, 2.0, 4.0])

    def test_a_message_of_the_script_s_own(self):
        told = []
        listener = kaanimation.listen("", lambda name, values: told.append((name, values)))
        kaanimation.send("mine", number=3, text="é", flag=True, part=0.5)
        listener.remove()
        kaanimation.send("mine")
        self.assertEqual(told, [("mine", {"number": 3, "text": "é", "flag": True, "part": 0.5})])

    def test_a_listener_that_is_dropped_hears_nothing_more_and_frees_its_function(self):
        told = []

        def hear(name, values):
            told.append(name)

        watched = weakref.ref(hear)
        listener = kaanimation.listen("mine", hear)
        del hear
        kaanimation.send("mine")
        del listener
        gc.collect()
        kaanimation.send("mine")
        self.assertEqual(told, ["mine"])
        self.assertIsNone(watched())


class Callbacks(Rig):
    def test_what_a_listener_raises_reaches_whoever_ticked_with_its_traceback(self):
        def fail(name, values):
            raise LookupError("from within")

        self.project.player.play()
        listener = kaanimation.listen("currentFrameChanged", fail)
        try:
            self.project.player.advance(0.04)
            self.fail("nothing was raised")
        except LookupError as error:
            self.assertEqual(traceback.extract_tb(error.__traceback__)[-1].name, "fail")
        listener.remove()
        self.project.player.advance(0.04)

    def test_a_sequence_tells_its_name_and_may_destroy_what_plays(self):
        sequence = self.project.create_sequence("step é", 3, 4)
        self.clip.add(sequence)
        names = []

        def hear(name):
            names.append(name)
            self.clip.destroy()

        player = self.project.player
        player.on_sequence = hear
        player.play([self.clip])
        for _ in range(10):
            player.advance(0.04)
        self.assertEqual(names, ["step é"])
        self.assertFalse(self.clip.is_alive)

    def test_world_positions_stop_at_what_a_callback_raises(self):
        self.clip.add(self.project.create_sequence("step", 3, 4))

        def fail(name):
            raise ZeroDivisionError

        self.project.player.on_sequence = fail
        with self.assertRaises(ZeroDivisionError):
            self.project.world_positions(range(11))

    def test_a_function_may_be_connected_and_may_call_back(self):
        calls = []

        def called():
            calls.append(self.curve.value_at(5))
            if len(calls) < 3:
                self.project.fire(self.curve, kaanimation.Trigger.BEGIN)

        self.project.connect(self.curve, kaanimation.Trigger.BEGIN, called)
        self.project.fire(self.curve, kaanimation.Trigger.BEGIN)
        self.assertEqual(calls, [90.0] * 3)
        self.project.fire(self.curve, kaanimation.Trigger.END)
        self.assertEqual(len(calls), 3)

    def test_a_callback_cannot_close_the_project_it_is_called_by(self):
        self.project.connect(self.curve, kaanimation.Trigger.BEGIN, self.project.close)
        with self.assertRaises(kaanimation.RefusedError):
            self.project.fire(self.curve, kaanimation.Trigger.BEGIN)
        self.assertTrue(self.project.is_open)

    def test_no_more_functions_than_there_is_room_for(self):
        for _ in range(256):
            self.project.connect(self.curve, 0, lambda: None)
        with self.assertRaises(kaanimation.RefusedError):
            self.project.connect(self.curve, 0, lambda: None)


if __name__ == "__main__":
    unittest.main()
