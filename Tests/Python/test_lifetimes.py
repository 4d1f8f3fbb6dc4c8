"""Opening and closing again and again, and ends of the interpreter in any order.

KA_OPENINGS says how often a project is opened, in full 100000 times; the memory that is left over must not grow with it.
"""

import contextlib
import gc
import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

import kaanimation

OPENINGS = int(os.environ.get("KA_OPENINGS", "120"))

# Each leaves something behind in another way; `project` is open, `listener` is at work.
ENDS = {
    "nothing is closed": "",
    "the project goes before its objects": "keys = project.curves[0].keys; del project",
    "objects in a ring": "ring = [project.clips[0]]; ring.append(ring); del project",
    "a callback holds the project": "project.player.on_sequence = lambda name, held=project: None",
    "a listener holds what it listens to": "listener2 = kaanimation.listen('', lambda *_, held=project: None); "
                                           "held = [listener2]; held.append(held)",
    "playing goes on": "project.player.play(repeat=True); project.player.advance(0.1)",
    "something is copied": "project.copy(project.clips)",
    "the module is forgotten": "import sys; clip = project.clips[0]; "
                               "[sys.modules.pop(name) for name in list(sys.modules) if 'kaanimation' in name]",
    "closed at exit by the script as well": "import atexit; atexit.register(project.close)",
    "used at exit": "import atexit; atexit.register(lambda: project.is_open and project.clips)",
    "a thread has run": "import threading; thread = threading.Thread(target=gc.collect); thread.start(); thread.join()",
    "a function is connected": "project.connect(project.clips[0], 0, lambda held=project: None)",
    "opened again": "project.close(); project = kaanimation.open(kaanimation.example())",
}


def resident() -> int:
    """Bytes of memory that the process has now."""
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * resource.getpagesize()


@contextlib.contextmanager
def redirected_output():
    """What the module says of every load goes nowhere."""
    sys.stdout.flush()
    kept = os.dup(1)
    nowhere = os.open(os.devnull, os.O_WRONLY)
    os.dup2(nowhere, 1)
    try:
        yield
    finally:
        os.dup2(kept, 1)
        os.close(kept)
        os.close(nowhere)


class Lifetimes(unittest.TestCase):
    def test_memory_does_not_grow_with_openings(self):
        with tempfile.TemporaryDirectory() as folder:
            files = pathlib.Path(folder, "swing.osg"), pathlib.Path(folder, "swing.xml")
            with kaanimation.open(kaanimation.example()) as project:
                project.save(*files)

            def once():
                with kaanimation.open(*files) as project: # in this process, as a model would not be
                    clip = project.clips[0]
                    clip.sample(range(11))
                    project.world_positions([0, 5])
                    project.player.play()
                    project.player.advance(0.1)
                    project.host.on_get_roll = lambda camera, held=project: 0
                    project.connect(clip, 0, lambda held=clip: None)
                    [key.value for curve in project.curves for key in curve.keys]
                    return project.scene.root.id # one more for every container that is made

            with redirected_output():
                self.measure(once)

    def measure(self, once):
        for _ in range(min(OPENINGS // 4, 2000)):
            once()
        gc.collect()
        objects, before, first = len(gc.get_objects()), resident(), once()
        for number in range(1, OPENINGS + 1):
            last = once()
            if number % 10_000 == 0:
                gc.collect()
                print(f"{number} openings: {resident() - before:+d} bytes, {last - first} containers", file=sys.stderr,
                      flush=True)
        gc.collect()
        self.assertLess(len(gc.get_objects()) - objects, 50)
        # The scene graph keeps a place of 16 bytes for every container there ever was, in a list that doubles; nothing
        # else may stay. What the allocator keeps comes in the beginning.
        self.assertLess(resident() - before, 2_000_000 + 2 * 16 * (last - first))

    def test_references_are_given_back(self):
        with kaanimation.open(kaanimation.example()) as project:
            clip = project.clips[0]

            def use():
                clip.sample([0, 1, 2])
                clip.name = "x"
                project.world_positions([0, 1])
                for curve in clip.curves:
                    curve.set_keys(curve.get_keys())
                try:
                    clip.curves[0].add_key(0, 1)
                except kaanimation.RefusedError:
                    pass

            # What is kept for the next time grows now and then; what is lost grows in every round.
            growths = []
            for _ in range(4):
                gc.collect()
                blocks = sys.getallocatedblocks()
                for _ in range(200):
                    use()
                gc.collect()
                growths.append(sys.getallocatedblocks() - blocks)
            self.assertLess(min(growths), 20, growths)

    def test_the_interpreter_ends_well_whatever_is_left(self):
        for name, code in ENDS.items():
            script = ("import gc, kaanimation\n"
                      "project = kaanimation.open(kaanimation.example())\n"
                      "listener = kaanimation.listen('currentFrameChanged', lambda *_: None)\n"
                      f"{code}\n")
            with self.subTest(name):
                ran = subprocess.run([sys.executable, "-X", "dev", "-c", script], capture_output=True, text=True)
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))

    def test_exit_in_a_callback_ends_the_script_with_its_code(self):
        script = ("import sys, kaanimation\n"
                  "project = kaanimation.open(kaanimation.example())\n"
                  "listener = kaanimation.listen('currentFrameChanged', lambda *_: sys.exit(7))\n"
                  "project.player.play()\n"
                  "project.player.advance(0.1)\n")
        self.assertEqual(subprocess.run([sys.executable, "-c", script]).returncode, 7)


if __name__ == "__main__":
    unittest.main()
