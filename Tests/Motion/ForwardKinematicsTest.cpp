#include "MotionTesting.h"

#include <cmath>
#include <gtest/gtest.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaControlPoint2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <map>
#include <sstream>

namespace ka::motion {
namespace {

// A second reading of motion-capture files, as plain as can be, that shares nothing with the importer.

using Matrix = std::array<std::array<double, 4>, 4>;

Matrix identity() {
    return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

Matrix times(const Matrix& a, const Matrix& b) {
    Matrix c{};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k)
                c[i][j] += a[i][k] * b[k][j];
    return c;
}

Matrix moved(double x, double y, double z) {
    Matrix m = identity();
    m[0][3] = x;
    m[1][3] = y;
    m[2][3] = z;
    return m;
}

Matrix turned(char axis, double degrees) {
    const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
    Matrix m = identity();
    const int i = axis == 'X' ? 1 : axis == 'Y' ? 2 : 0, j = (i + 1) % 3;
    m[i][i] = m[j][j] = c;
    m[i][j] = -s;
    m[j][i] = s;
    return m;
}

struct Joint {
    std::string name;
    int parent = -1;
    double offset[3] = {0, 0, 0};
    std::vector<std::string> channels;
};

struct Capture {
    std::vector<Joint> joints;
    double frameTime = 0;
    std::vector<std::vector<double>> frames;

    /// World positions by joint name at one frame of the file.
    std::map<std::string, std::array<double, 3>> positions(std::size_t frame) const {
        std::map<std::string, std::array<double, 3>> result;
        std::vector<Matrix> world;
        auto number = frames[frame].begin();
        for (const Joint& joint : joints) {
            double place[3] = {joint.offset[0], joint.offset[1], joint.offset[2]};
            Matrix rotation = identity();
            for (const std::string& channel : joint.channels) {
                if (channel.find("position") != channel.npos)
                    place[channel[0] - 'X'] = *number++;
                else
                    rotation = times(rotation, turned(channel[0], *number++));
            }
            const Matrix local = times(moved(place[0], place[1], place[2]), rotation);
            world.push_back(joint.parent < 0 ? local
                                             : times(world[static_cast<std::size_t>(joint.parent)], local));
            result[joint.name] = {world.back()[0][3], world.back()[1][3], world.back()[2][3]};
        }
        return result;
    }

    /// The numbers of one joint that turn it, straight between the frame and the next, and their axes.
    std::vector<std::pair<char, double>> turns(std::size_t joint, std::size_t frame, double part) const {
        std::size_t number = 0;
        for (std::size_t i = 0; i < joint; ++i)
            number += joints[i].channels.size();
        std::vector<std::pair<char, double>> result;
        for (const std::string& channel : joints[joint].channels) {
            const double from = frames[frame][number];
            const double to = part > 0 ? frames[frame + 1][number] : from;
            // What jumps over the half turn goes on the short way.
            if (channel.find("rotation") != channel.npos)
                result.emplace_back(channel[0], from + part * std::remainder(to - from, 360.0));
            ++number;
        }
        return result;
    }
};

Matrix turnedByAll(const std::vector<std::pair<char, double>>& turns) {
    Matrix rotation = identity();
    for (const auto& [axis, degrees] : turns)
        rotation = times(rotation, turned(axis, degrees));
    return rotation;
}

/// The angle, in degrees, between two rotations: half the chord between them is the sine of half the angle.
double between(const Matrix& a, const Matrix& b) {
    double squares = 0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            squares += (a[i][j] - b[i][j]) * (a[i][j] - b[i][j]);
    return 2 * std::asin(std::min(1.0, std::sqrt(squares / 8))) * 180 / M_PI;
}

Capture readCapture(const std::string& path) {
    std::istringstream text(testing::contentOf(path));
    Capture capture;
    std::vector<int> open;
    std::string word;
    std::size_t numbers = 0, count = 0;
    while (text >> word && word != "Frames:") {
        if (word == "ROOT" || word == "JOINT" || word == "End") {
            Joint joint;
            text >> joint.name;
            joint.parent = open.empty() ? -1 : open.back();
            if (word == "End")
                joint.name = capture.joints[static_cast<std::size_t>(joint.parent)].name + "_End";
            capture.joints.push_back(joint);
            open.push_back(static_cast<int>(capture.joints.size()) - 1);
        } else if (word == "OFFSET") {
            for (double& value : capture.joints.back().offset)
                text >> value;
        } else if (word == "CHANNELS") {
            text >> count;
            for (std::size_t i = 0; i < count && text >> word; ++i)
                capture.joints.back().channels.push_back(word);
            numbers += count;
        } else if (word == "}") {
            open.pop_back();
        }
    }
    text >> count >> word >> word >> capture.frameTime;
    capture.frames.assign(count, std::vector<double>(numbers));
    for (auto& frame : capture.frames)
        for (double& value : frame)
            text >> value;
    return capture;
}

class ForwardKinematics : public ::testing::TestWithParam<const char*> {};

TEST_P(ForwardKinematics, AgreesWithTheImportedSceneAtFiftyFrames) {
    const std::string path = testing::modelPath(std::string("BVH/") + GetParam());
    const Capture capture = readCapture(path);
    ASSERT_GT(capture.frames.size(), 1000U);
    ProjectFiles files;
    files.file = path;
    const Project project(files);
    const auto objects = project.playable("");
    const auto nodes = project.placedNodes();
    ASSERT_EQ(nodes.size(), capture.joints.size());
    double worst = 0;
    for (std::size_t i = 0; i < 50; ++i) {
        const std::size_t frame = i * (capture.frames.size() - 1) / 49;
        evaluate(objects, static_cast<float>(static_cast<double>(frame) * capture.frameTime * 25.0));
        const auto expected = capture.positions(frame);
        for (const NodePose& pose : readPose(nodes)) {
            const auto found = expected.find(pose.name);
            ASSERT_NE(found, expected.end()) << pose.name;
            for (std::size_t axis = 0; axis < 3; ++axis)
                worst =
                    std::max(worst, std::abs(static_cast<double>(pose.position[axis]) - found->second[axis]));
        }
    }
    EXPECT_LT(worst, 1e-3);
}

/// The three curves that turn a joint.
struct TurningCurves {
    std::array<kaAnimationCurve2D*, 3> curves{};

    TurningCurves(const CurveList& all, const std::string& joint) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            curves[axis] = chooseCurves(all, {joint + ".rotation" + "XYZ"[axis]}).at(0);
    }

    /// How the curves, sampled as in playback, turn the joint: about X first, then Y, then Z.
    Matrix at(float frame) const {
        std::array<double, 3> angles{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            float value = std::nanf("");
            EXPECT_TRUE(kaAnimationController::the()->computeCurveValue(curves[axis], frame, value));
            angles[axis] = static_cast<double>(value);
        }
        return turnedByAll({{'Z', angles[2]}, {'Y', angles[1]}, {'X', angles[0]}});
    }

    double largestStep() const {
        double largest = 0;
        for (kaAnimationCurve2D* curve : curves) {
            double last = std::nan("");
            for (const auto& [frame, key] : curve->getPoints()) {
                const auto value = static_cast<double>(key->getPosition()[1]);
                largest = std::fmax(largest, std::abs(value - last));
                last = value;
            }
        }
        return largest;
    }
};

/// The largest step of any of the numbers that turn a joint, from a frame to the next.
double rawStep(const Capture& capture, std::size_t joint, std::size_t frame) {
    const auto here = capture.turns(joint, frame, 0), next = capture.turns(joint, frame + 1, 0);
    double largest = 0;
    for (std::size_t i = 0; i < here.size(); ++i)
        largest = std::max(largest, std::abs(std::remainder(next[i].second - here[i].second, 360.0)));
    return largest;
}

TEST_P(ForwardKinematics, KeepsOneKeyForEachFrameAndTheWayBetweenThem) {
    const std::string path = testing::modelPath(std::string("BVH/") + GetParam());
    const Capture capture = readCapture(path);
    ProjectFiles files;
    files.file = path;
    const Project project(files);
    EXPECT_EQ(project.report().addedKeys, 0U);
    const CurveList all = allCurves();
    for (kaAnimationCurve2D* curve : all)
        ASSERT_EQ(curve->getPoints().size(), capture.frames.size()) << curveLabel(curve);
    const auto frame = [&](double at) { return static_cast<float>(at * capture.frameTime * 25.0); };
    double worstAtKeys = 0, worstBetween = 0, largestStep = 0;
    for (std::size_t joint = 0; joint < capture.joints.size(); ++joint) {
        if (capture.joints[joint].channels.empty())
            continue;
        const TurningCurves curves(all, capture.joints[joint].name);
        largestStep = std::max(largestStep, curves.largestStep());
        for (std::size_t i = joint % 7; i + 1 < capture.frames.size(); i += 7) {
            const auto at = static_cast<double>(i);
            worstAtKeys =
                std::max(worstAtKeys, between(curves.at(frame(at)), turnedByAll(capture.turns(joint, i, 0))));
            // Where the numbers leap, as they do where two of the axes fall together, the file does not say
            // what is in between.
            if (rawStep(capture, joint, i) > 20)
                continue;
            worstBetween = std::max(
                worstBetween, between(curves.at(frame(at + 0.5)), turnedByAll(capture.turns(joint, i, 0.5))));
        }
    }
    EXPECT_LT(worstAtKeys, 1e-3);
    EXPECT_LT(worstBetween, 0.0101); // the tolerance, and what a float adds to it
    EXPECT_LT(largestStep, 180.0);
}

#ifdef KA_WATCHED_MEMORY // where each of them takes half a minute and visits the same lines
INSTANTIATE_TEST_SUITE_P(RealCaptures, ForwardKinematics, ::testing::Values("01_01.bvh"));
#else
INSTANTIATE_TEST_SUITE_P(RealCaptures, ForwardKinematics,
                         ::testing::Values("01_01.bvh", "01_03.bvh", "Boxing_Toes.bvh"));
#endif

} // namespace
} // namespace ka::motion
