"""What goes wrong, and how it says so.   usage: FOLDER"""

import pathlib
import sys

import kaanimation

broken = pathlib.Path(sys.argv[1], "broken.bvh")
broken.write_text(kaanimation.example().read_text().replace("OFFSET 10 0 0", "OFFSET ten 0 0"))
try:
    kaanimation.open(broken)
except kaanimation.FileError as error:
    print(f"line {error.line}: {error}")

with kaanimation.open(kaanimation.example()) as project:
    clip = project.clips[0]
    curve = clip.curves[0]
    for wrong in (
        lambda: kaanimation.open(kaanimation.example()),  # one project at a time
        lambda: project.scene.find("Foot"),  # no such node
        lambda: curve.add_key(5, 1),  # there is one at that frame
        lambda: (clip.destroy(), curve.value_at(3)),  # gone with the clip
    ):
        try:
            wrong()
        except kaanimation.Error as error:
            print(f"{type(error).__name__}: {error}")
try:
    project.clips
except kaanimation.ClosedError as error:
    print(f"ClosedError: {error}")
