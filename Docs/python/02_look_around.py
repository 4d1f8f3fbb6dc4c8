"""What a capture holds.   usage: CAPTURE"""

import sys

import kaanimation

with kaanimation.open(sys.argv[1]) as project:
    print(f"{len(project.scene)} nodes, {len(project.curves)} curves")
    for clip in project.clips:
        print(f"clip {clip.name!r}: frames {clip.begin:g} to {clip.end:g}, {len(clip)} tracks")
        for block in clip.blocks[:3]:
            print(f"  block of {block.node.path if block.node else 'no node'}")
            for curve in block:
                first = curve.keys[0]
                print(f"    {curve.label}: {len(curve)} keys, the first at {first.frame:g} is {first.value:g} "
                      f"{curve.unit}, placed {first.tangent!r}")
