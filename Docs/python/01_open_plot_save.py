"""Open a capture, draw its curves, save it as scene and document.   usage: CAPTURE FOLDER"""

import sys

import kaanimation

capture, folder = sys.argv[1:]
with kaanimation.open(capture) as project:
    project.draw_curves(f"{folder}/curves.png")
    project.save(f"{folder}/motion.osg", f"{folder}/motion.xml")
