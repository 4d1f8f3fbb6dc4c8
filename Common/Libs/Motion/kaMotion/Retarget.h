#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <kaMotion/Rotation.h>
#include <string>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// A skeleton in motion as plain data, for another skeleton to take over; the scene and the animation that it
/// was taken from may go.
struct SkeletonMotion {
    /// One node in the world, frame by frame.
    struct Joint {
        std::string name;            ///< UTF-8
        int parent = -1;             ///< place of the node above in the list, before its own; -1 for none
        bool isMoved = false;        ///< whether any curve places it
        Vec3 restPosition{0, 0, 0};  ///< in the world, as the scene stood
        Quaternion restRotation;     ///< in the world
        std::vector<Vec3> positions; ///< in the world, at each frame
        std::vector<Quaternion> rotations; ///< in the world, at each frame
    };

    std::string name;           ///< of the clip, UTF-8
    std::vector<double> frames; ///< ascending
    std::vector<Joint> joints;  ///< those above first
};

/// Takes the motion of a skeleton down at every key of its curves and every whole frame between.
/// @param root  of the scene, which holds the rest pose now. @param curves  of one clip.
/// @param name  of the clip, UTF-8.
/// @throws Failure (Usage) when this were more than ten million poses.
SkeletonMotion recordSkeleton(const osg::NodePtr& root, const CurveList& curves, const std::string& name);

/// Which node of the one skeleton is which of the other.
struct RetargetOptions {
    /// Names of the source and of the target; patterns with "*" hand on what it stands for ("mixamorig:*",
    /// "*"). Of several that fit the first counts. Empty: names are the same but for what stands before the
    /// last ":" or "|", for capitals, and for blanks and the signs "_", "-", ".".
    std::vector<std::pair<std::string, std::string>> names;
    /// Whether limbs point where the source's point, whatever the two rest poses: with it a skeleton that
    /// rests with its arms down follows one that rests with its arms out. Otherwise turns away from the rest
    /// are taken over.
    bool alignsLimbs = true;
    std::string clip; ///< name of the new clip, UTF-8; empty: that of the source
};

/// Moves a skeleton as another one moves: a new clip with rotations of every node that the names map, and
/// positions of the topmost of them, scaled by how high the two skeletons' topmost nodes rest above their
/// lowest. Lengths of limbs stay the target's. Curves get a straight key at every frame of the recording;
/// thin them afterwards.
///
/// Every node turns in the world by what the source's turns away from its own rest; with `alignsLimbs` a node
/// with one mapped node below it is first turned so that it points at it as the source's does at rest.
/// @param source  the recording.
/// @param root  of the target's scene, in its rest pose.
/// @param options  how.
/// @param listener  may cancel, which changes nothing.
/// @return what was mapped; notes name moving nodes of the source that have no counterpart.
/// @throws Failure (Usage) when no name fits, and for a motion without frames.
OperationReport retarget(const SkeletonMotion& source, const osg::NodePtr& root,
                         const RetargetOptions& options, Listener& listener = Listener::none());

/// Reads a table of names, a line each: "source = target"; blanks around them do not count, nor do empty
/// lines and those that begin with "#".
/// @throws Failure (Unreadable), its text without a file's name, for another line.
std::vector<std::pair<std::string, std::string>> parseNameTable(const std::string& text);

} // namespace ka::motion
#pragma GCC visibility pop
