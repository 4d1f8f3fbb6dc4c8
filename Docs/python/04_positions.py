"""How far each joint travels.   usage: CAPTURE"""

import sys

import kaanimation
import numpy as np

with kaanimation.open(sys.argv[1]) as project:
    first, last = project.frame_range
    positions = project.world_positions(np.arange(first, last + 1))  # (frames, nodes, 3)
    names = [node.name for node in project.scene.placed_nodes]

travelled = np.linalg.norm(np.diff(positions, axis=0), axis=2).sum(axis=0)
for joint in np.argsort(travelled)[::-1][:5]:
    print(f"{names[joint]} travels {travelled[joint]:.0f} units")
