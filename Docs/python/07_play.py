"""Playing by a clock of the script's, messages, events, a trigger.   no arguments"""

import kaanimation

with kaanimation.open(kaanimation.example()) as project:
    clip = project.clips[0]
    clip.add(project.create_sequence("top", 5, 6))
    player = project.player
    player.on_sequence = lambda name: print(f"event {name!r} at frame {player.frame:g}")

    with kaanimation.listen("currentFullFrameChanged", lambda _, values: print("frame", values["frame"])):
        player.play([clip])
        while player.playing:
            player.advance(1 / 25)

    project.connect(clip, kaanimation.Trigger.END, lambda: print("the clip has ended"))
    player.start(clip)  # by itself, beside the timeline
    while player.tick() and player.time < 2:
        player.advance(1 / 25)
