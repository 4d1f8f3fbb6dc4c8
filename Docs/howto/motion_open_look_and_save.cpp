// Opens a motion capture with libkaMotion, looks at what it holds and where its joints go, and saves it as a
// scene with its animation document. Run as: motion_open_look_and_save CAPTURE SCENE DOCUMENT
#include "require.h"

#include <OpenSG/OSGNode.h>
#include <cmath>
#include <cstdio>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Listener.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>

using namespace ka::motion;

namespace {

/// What the library has to tell goes wherever the program puts it; here, to standard error.
class Told : public Listener {
  public:
    void note(const std::string& line) override { std::fprintf(stderr, "%s\n", line.c_str()); }
};

/// How far the node called `name` is from where it stood at the first frame, when it is furthest.
double reach(const Project& project, const std::string& name) {
    const std::vector<kaAnimationObject*> clip = project.playable("");
    const auto [first, last] = frameRange(clip);
    double furthest = 0.0;
    std::array<float, 3> start{};
    for (float frame = first; frame <= last; frame += 25.0F) {
        evaluate(clip, frame);
        for (const NodePose& pose : readPose(project.placedNodes())) {
            if (pose.name != name)
                continue;
            if (frame == first)
                start = pose.position;
            furthest = std::max(furthest, std::hypot(static_cast<double>(pose.position[0] - start[0]),
                                                     static_cast<double>(pose.position[1] - start[1]),
                                                     static_cast<double>(pose.position[2] - start[2])));
        }
    }
    return furthest;
}

} // namespace

int main(int argc, char** argv) {
    require(argc == 4, "a capture, and where scene and document go");
    Told told;
    double wentBefore = 0.0;
    {
        ProjectFiles files;
        files.file = argv[1];
        const Project project(files, told); // everything registered goes with it
        require(project.report().clips == 1 && project.report().curves > 0,
                "a capture is one clip of curves");
        wentBefore = reach(project, "Hips");
        require(wentBefore > 0.0, "the figure moves");
        require(save(project.root(), {argv[2], argv[3]}, told).empty(),
                "what was written plays as it was meant to");
    }
    require(kaAnimationManager::the()->getObjects().empty(), "nothing is left of the first project");
    {
        ProjectFiles files;
        files.file = argv[2];
        files.animation = argv[3];
        const Project project(files, told);
        require(std::fabs(reach(project, "Hips") - wentBefore) < 1e-3, "the scene moves as the capture does");
    }
    try {
        ProjectFiles files;
        files.file = "no such file.bvh";
        const Project project(files, told);
        require(false, "a file that is missing is no project");
    } catch (const Failure& failure) { // one line for the user, and what kind of failure it is
        require(failure.code() == ExitCode::Unreadable, "a missing file cannot be read");
    }
    return 0;
}
