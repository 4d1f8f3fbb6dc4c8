"""All curves at many frames as one array.   usage: CAPTURE"""

import sys

import kaanimation
import numpy as np

with kaanimation.open(sys.argv[1]) as project:
    clip = project.clips[0]
    samples = clip.sample(np.arange(clip.begin, clip.end, 0.5))  # half frames

spans = np.ptp(samples.values, axis=0)
for column in np.argsort(spans)[::-1][:5]:
    print(f"{samples.names[column]} covers {spans[column]:.1f} {samples.units[column]}")

try:
    samples.plot()
except ImportError:
    print("no matplotlib: no picture")
