#include "ToolsTesting.h"
#include "scene/Pose.h"
#include "scene/Project.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace ka::tools {
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
};

Capture readCapture(const std::string& path) {
    std::istringstream text(testing::readFile(path));
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

INSTANTIATE_TEST_SUITE_P(RealCaptures, ForwardKinematics,
                         ::testing::Values("01_01.bvh", "01_03.bvh", "Boxing_Toes.bvh"));

} // namespace
} // namespace ka::tools
