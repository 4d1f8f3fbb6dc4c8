"""What several tests of the package share."""

import os
import pathlib
import unittest

import kaanimation

CAPTURES = pathlib.Path("/usr/share/assimp/models/BVH")
KA_ANIM = os.environ.get("KA_ANIM", "")


class Rig(unittest.TestCase):
    """Opens the small capture that comes with the package: an arm and a hand over eleven frames."""

    def setUp(self) -> None:
        self.project = kaanimation.open(kaanimation.example())
        self.addCleanup(self.project.close)
        self.clip = self.project.clips[0]
        self.block = self.clip.blocks[0]
        self.curve = next(curve for curve in self.project.curves if curve.label == "Arm.rotationZ")
