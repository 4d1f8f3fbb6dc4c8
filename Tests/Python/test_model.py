"""Random scripts against the slow model of the C++ tests: one step to both, then everything compared.

KA_MODEL_SEEDS scripts from seed KA_MODEL_FIRST on.
"""

import math
import os
import random
import unittest

import numpy as np

import kaanimation

try:
    from ka_slow_model import World
except ImportError:
    World = None

SEEDS = int(os.environ.get("KA_MODEL_SEEDS", "200"))
FIRST = int(os.environ.get("KA_MODEL_FIRST", "1"))
STEPS = 30
CURVE, BLOCK, TRACK, CLIP, SEQUENCE = 2, 3, 4, 5, 6
KINDS = {CURVE: kaanimation.Curve, BLOCK: kaanimation.Block, TRACK: kaanimation.Track, CLIP: kaanimation.Clip,
         SEQUENCE: kaanimation.Sequence}


class Script:
    """One random script on both sides. An object of ours knows its twin's id in the model."""

    def __init__(self, test: unittest.TestCase, project: kaanimation.Project, seed: int) -> None:
        self.test, self.project, self.random = test, project, random.Random(seed)
        self.world = World()
        self.twins: dict[kaanimation.Object, int] = {}
        self.field = project.scene.find("Arm").field("translationX")

    def pick(self, *types: int):
        kinds = tuple(KINDS[kind] for kind in types)
        there = [item for item in self.twins if isinstance(item, kinds)]
        return self.random.choice(there) if there else None

    def frame(self) -> float:
        return float(np.float32(self.random.choice([self.random.randint(-20, 40), self.random.uniform(-20, 40)])))

    def both(self, ours, model, may: bool) -> None:
        """Does it on both sides where the model says that it may be done; else ours must refuse."""
        if may:
            ours()
            model()
        else:
            with self.test.assertRaises(kaanimation.RefusedError):
                ours()

    # The steps.

    def create(self) -> None:
        kind = self.random.choice([CURVE, CURVE, BLOCK, BLOCK, TRACK, CLIP, SEQUENCE])
        if kind == CURVE:
            made = self.project.create_curve(self.field, "c")
        elif kind == SEQUENCE:
            begin = self.frame()
            end = float(np.float32(begin + self.random.randint(1, 9)))
            made = self.project.create_sequence("s", begin, end)
            self.world.create_sequence(made.id, begin, end)
        else:
            make = {BLOCK: self.project.create_block, TRACK: self.project.create_track, CLIP: self.project.create_clip}
            made = make[kind]("o")
        if kind != SEQUENCE:
            self.world.create(kind, made.id)
        self.twins[made] = made.id

    def add_key(self) -> None:
        curve = self.pick(CURVE)
        if curve is None:
            return
        x, y, replace = self.frame(), self.frame(), self.random.random() < 0.5
        # The model says by its answer whether it was done; a refusal changes nothing.
        if self.world.add_key(self.twins[curve], x, y, replace):
            self.test.assertEqual(curve.add_key(x, y, replace=replace).value, y)
        else:
            with self.test.assertRaises(kaanimation.RefusedError):
                curve.add_key(x, y, replace=replace)

    def set_keys(self) -> None:
        curve = self.pick(CURVE)
        if curve is None:
            return
        frames = self.random.sample(range(-20, 40), self.random.randint(1, 8))
        rows = [(float(frame), self.frame()) for frame in frames]
        curve.set_keys(np.array(rows, np.float32))
        self.world.set_keys(self.twins[curve], rows)

    def add(self) -> None:
        holder, child = self.pick(BLOCK, TRACK, CLIP), self.pick(CURVE, BLOCK, TRACK, CLIP, SEQUENCE)
        if holder is None or child is None or child.parent is not None:
            return  # a second place for what has one is left to the C++ tests
        ids = self.twins[holder], self.twins[child]
        if not self.world.may_adopt(*ids):
            return
        held = self.world.add(*ids)
        if held == 0:
            with self.test.assertRaises(kaanimation.RefusedError):
                holder.add(child)
        else:
            self.twins.setdefault(holder.add(child), held)

    def insert(self) -> None:
        holder, child = self.pick(TRACK, CLIP), self.pick(BLOCK, CLIP, SEQUENCE, CURVE)
        if holder is None or child is None or child.parent is not None:
            return
        ids = self.twins[holder], self.twins[child]
        if not self.world.may_adopt(*ids):
            return
        held = self.world.insert(*ids)
        if held == 0:
            with self.test.assertRaises(kaanimation.RefusedError):
                holder.insert(child)
        else:
            track = holder.insert(child)
            if track is not None:
                self.twins.setdefault(track, held)

    def remove(self) -> None:
        holder = self.pick(BLOCK, TRACK)
        if holder is None or not len(holder):
            return
        child = self.random.choice(holder.children)
        holder.remove(child)
        self.world.remove(self.twins[holder], self.twins[child])

    def destroy(self) -> None:
        victim = self.pick(*KINDS)
        if victim is not None and self.random.random() < 0.4:
            self.world.destroy(self.twins[victim])
            victim.destroy()

    def move(self) -> None:
        item = self.pick(*KINDS)
        if item is not None:
            by = self.frame()
            item.move(by)
            self.world.move(self.twins[item], by)

    def stretch(self) -> None:
        item = self.pick(*KINDS)
        if item is None:
            return
        way = self.random.choice(["move_begin", "move_end", "trim_begin", "trim_end"])
        to, state = self.frame(), self.world.state(self.twins[item])
        may = to < state["end"] - 1e-6 if "begin" in way else to > state["begin"] + 1e-6
        self.both(lambda: getattr(item, way)(to), lambda: getattr(self.world, way)(self.twins[item], to), may)

    def flip(self) -> None:
        item = self.pick(*KINDS)
        if item is not None:
            item.flip()
            self.world.flip(self.twins[item])

    def flag(self) -> None:
        item = self.pick(*KINDS)
        if item is not None:
            name, value = self.random.choice(["active", "repeating"]), self.random.random() < 0.5
            setattr(item, name, value)
            getattr(self.world, f"set_{name}")(self.twins[item], value)

    # The comparison.

    def same(self, ours: float, model: float) -> bool:
        return ours == model or math.isclose(ours, model, rel_tol=2e-5, abs_tol=2e-5) or (
            not math.isfinite(ours) and not math.isfinite(model))

    def compare(self, told: str) -> None:
        check = self.test.assertTrue
        for item, twin in list(self.twins.items()):
            self.test.assertEqual(item.is_alive, self.world.exists(twin), told)
            if not item.is_alive:
                with self.test.assertRaises(kaanimation.GoneError):
                    item.name
                del self.twins[item]
                continue
            state = self.world.state(twin)
            for name in ("begin", "end", "minimum", "maximum"):
                check(self.same(getattr(item, name), state[name]),
                      f"{told}: {name} {getattr(item, name)}, the model says {state[name]}")
            for name in ("active", "repeating", "flipped", "trimmed"):
                self.test.assertEqual(getattr(item, name), state[name], f"{told}: {name}")
            parent = item.parent
            self.test.assertEqual(self.twins[parent] if parent is not None else 0, state["parent"], told)
            if isinstance(item, kaanimation.Curve):
                self.compare_keys(item, twin, told)
            else:
                self.test.assertEqual([self.twins[child] for child in item.children], state["children"], told)

    def compare_keys(self, curve: kaanimation.Curve, twin: int, told: str) -> None:
        ours, model = curve.get_keys(), self.world.keys(twin)
        self.test.assertEqual(len(ours), len(model), told)
        for row, other in zip(ours.tolist(), model):
            self.test.assertEqual(row[:2], other[:2], told)
            self.test.assertTrue(all(map(self.same, row[2:6], other[2:6])), f"{told}: {row}, the model says {other}")

    def run(self) -> None:
        steps = [self.create, self.create, self.create, self.add_key, self.add_key, self.set_keys, self.add, self.add,
                 self.insert, self.insert, self.remove, self.destroy, self.move, self.stretch, self.stretch, self.flip,
                 self.flag]
        for number in range(STEPS):
            step = self.random.choice(steps)
            step()
            self.compare(f"step {number}, {step.__name__}")


@unittest.skipIf(World is None, "the slow model is not built")
class RandomScripts(unittest.TestCase):
    def test_leave_the_module_as_the_model_says(self):
        with kaanimation.open(kaanimation.example()) as project:
            for clip in project.clips:
                clip.destroy()
            for seed in range(FIRST, FIRST + SEEDS):
                with self.subTest(seed=seed):
                    Script(self, project, seed).run()
                for item in project.objects:
                    if item.is_alive:
                        item.destroy()
                self.assertEqual(project.object_count, 0)

    def test_notice_a_lie(self):
        with kaanimation.open(kaanimation.example()) as project:
            script = Script(self, project, 1)
            curve = project.create_curve(script.field, "c")
            script.world.create(CURVE, curve.id)
            script.twins[curve] = curve.id
            script.compare("the truth")
            script.world.add_key(curve.id, 3, 4, False)
            with self.assertRaises(AssertionError):
                script.compare("a lie")


if __name__ == "__main__":
    unittest.main()
