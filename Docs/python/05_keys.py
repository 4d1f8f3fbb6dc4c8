"""Keys as a structured array: shake one curve and quieten another.   usage: CAPTURE"""

import sys

import kaanimation
import numpy as np

with kaanimation.open(sys.argv[1]) as project:
    shaken, quiet = project.clips[0].curves[:2]

    keys = shaken.get_keys()
    keys["value"] += np.random.default_rng(1).normal(0, 0.5, len(keys))
    keys["tangent"] = kaanimation.Tangent.SMOOTH  # the handles follow the new values
    shaken.set_keys(keys)

    frames = np.arange(quiet.begin, quiet.end + 1, 5, dtype=np.float32)  # every fifth frame, smooth between
    quiet.set_keys(np.column_stack([frames, quiet.sample(frames).values[:, 0]]))
    print(f"{shaken.label} has {len(shaken)} keys, {quiet.label} {len(quiet)}")
