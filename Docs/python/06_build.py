"""A scene of one's own, from a node to a clip.   usage: FOLDER"""

import sys

import kaanimation
import numpy as np

with kaanimation.open(kaanimation.example()) as project:  # a project starts from a file
    door = project.scene.root.add_child("door")
    opening = project.create_curve(door, "rotationY")
    opening.set_keys(np.array([[0, 0], [25, 90], [50, 90], [60, 0]], np.float32))  # (frame, degrees)
    opening.keys[2].tangent = kaanimation.Tangent.FLAT

    clip = project.create_clip("doors")
    clip.add(project.create_block("door opens", [opening]))
    project.evaluate(25, [clip])
    print("at frame 25 the door stands at", door.rotation[1], "degrees")

    project.save(f"{sys.argv[1]}/door.osg", f"{sys.argv[1]}/door.xml")
