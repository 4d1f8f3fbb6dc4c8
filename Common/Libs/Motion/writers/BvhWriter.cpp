#include "writers/BvhWriter.h"

#include "kaMotion/Text.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

Matrix3 transposed(const Matrix3& m) {
    Matrix3 t{};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            t[column][row] = m[row][column];
    return t;
}

Vec3 difference(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double largest(const Vec3& v) {
    return std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])});
}

std::string joined(const Vec3& v) {
    return formatNumber(v[0]) + " " + formatNumber(v[1]) + " " + formatNumber(v[2]);
}

class BvhText {
  public:
    BvhText(const SampledMotion& motion, const BvhOptions& options) : _motion(motion), _options(options) {}

    WrittenBvh write() {
        findChildren();
        findOffsets();
        findEndSites();
        _written.text = "HIERARCHY\n";
        writeHierarchy();
        writeFrames();
        if (_renamed > 0)
            _written.notes.push_back(counted(_renamed, "name") + " with blanks or braces, which became '_'");
        return std::move(_written);
    }

  private:
    struct Joint {
        std::vector<std::size_t> children;
        std::vector<Vec3> offsets; ///< one a frame, in the parent's axes
        Vec3 offset{};             ///< what the hierarchy says
        bool moves = false;
        bool isEndSite = false;
    };

    void findChildren() {
        _joints.resize(_motion.nodes.size());
        for (std::size_t i = 0; i < _joints.size(); ++i) {
            const std::int32_t parent = _motion.nodes[i].parent;
            (parent == MotionNode::noParent ? _roots : _joints[static_cast<std::size_t>(parent)].children)
                .push_back(i);
        }
    }

    void findOffsets() {
        double size = 0.0;
        for (const auto& poses : _motion.frames) {
            std::vector<Matrix3> turned(_joints.size());
            for (std::size_t i = 0; i < _joints.size(); ++i) {
                const std::int32_t parent = _motion.nodes[i].parent;
                const Matrix3 own = matrixFromAngles(poses[i].rotation, sceneOrder);
                Vec3 offset = poses[i].position;
                turned[i] = own;
                if (parent != MotionNode::noParent) {
                    const auto above = static_cast<std::size_t>(parent);
                    offset = product(transposed(turned[above]), difference(offset, poses[above].position));
                    turned[i] = product(turned[above], own);
                }
                size = std::max(size, largest(poses[i].position));
                _joints[i].offsets.push_back(offset);
            }
        }
        for (std::size_t i = 0; i < _joints.size(); ++i) {
            Joint& joint = _joints[i];
            const bool isRoot = _motion.nodes[i].parent == MotionNode::noParent;
            joint.offset = joint.offsets.empty() ? _motion.nodes[i].translation : joint.offsets.front();
            // Positions come from products in single precision.
            joint.moves =
                isRoot || std::any_of(joint.offsets.begin(), joint.offsets.end(), [&](const Vec3& o) {
                    return largest(difference(o, joint.offset)) > 2e-6 * size;
                });
            if (isRoot)
                joint.offset = {
                    0, 0, 0}; // a root's positions are added to its offset by some, and replace it by others
        }
    }

    void findEndSites() {
        for (Joint& joint : _joints) {
            if (joint.children.size() != 1)
                continue;
            const std::size_t child = joint.children.front();
            const auto place = static_cast<std::size_t>(&joint - _joints.data());
            const auto turns = [&](const std::vector<SampledMotion::Pose>& poses) {
                return largest(poses[child].rotation) > 0.0;
            };
            _joints[child].isEndSite = _joints[child].children.empty() && !_joints[child].moves &&
                                       _motion.nodes[child].name == _motion.nodes[place].name + "_End" &&
                                       std::none_of(_motion.frames.begin(), _motion.frames.end(), turns);
        }
    }

    void writeHierarchy() {
        if (_roots.size() > 1) {
            _written.text += "ROOT scene\n{\n\tOFFSET 0 0 0\n\tCHANNELS 0\n";
            ++_written.joints;
        }
        struct Step {
            std::size_t node;
            int depth;
            bool closes;
        };
        const int top = _roots.size() > 1 ? 1 : 0;
        std::vector<Step> pending;
        for (auto root = _roots.rbegin(); root != _roots.rend(); ++root)
            pending.push_back({*root, top, false});
        while (!pending.empty()) {
            const Step step = pending.back();
            pending.pop_back();
            const std::string indent(static_cast<std::size_t>(step.depth), '\t');
            if (step.closes) {
                _written.text += indent + "}\n";
                continue;
            }
            openJoint(step.node, indent);
            pending.push_back({step.node, step.depth, true});
            const auto& children = _joints[step.node].children;
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                pending.push_back({*child, step.depth + 1, false});
        }
        if (_roots.size() > 1)
            _written.text += "}\n";
    }

    void openJoint(std::size_t node, const std::string& indent) {
        const Joint& joint = _joints[node];
        const bool isFirst = _written.joints == 0;
        std::string& text = _written.text;
        if (joint.isEndSite) {
            text +=
                indent + "End Site\n" + indent + "{\n" + indent + "\tOFFSET " + joined(joint.offset) + "\n";
            return;
        }
        text += indent + (isFirst ? "ROOT " : "JOINT ") + plainName(node) + "\n" + indent + "{\n" + indent +
                "\tOFFSET " + joined(joint.offset) + "\n" + indent + "\tCHANNELS " +
                (joint.moves ? "6" : "3");
        if (joint.moves)
            text += " Xposition Yposition Zposition";
        for (const int axis : _options.order)
            text += std::string(" ") + "XYZ"[axis] + "rotation";
        text += "\n";
        if (joint.children.empty())
            text +=
                indent + "\tEnd Site\n" + indent + "\t{\n" + indent + "\t\tOFFSET 0 0 0\n" + indent + "\t}\n";
        ++_written.joints;
        _written.channels += joint.moves ? 6 : 3;
        _order.push_back(node);
    }

    std::string plainName(std::size_t node) {
        std::string name =
            _motion.nodes[node].name.empty() ? "node_" + std::to_string(node) : _motion.nodes[node].name;
        const auto isBad = [](char c) {
            return static_cast<unsigned char>(c) <= ' ' || c == '{' || c == '}';
        };
        if (std::any_of(name.begin(), name.end(), isBad))
            ++_renamed;
        std::replace_if(name.begin(), name.end(), isBad, '_');
        return name;
    }

    void writeFrames() {
        std::string& text = _written.text;
        text += "MOTION\nFrames: " + std::to_string(_motion.frames.size()) +
                "\nFrame Time: " + formatNumber(_motion.secondsPerFrame) + "\n";
        std::vector<Vec3> previous(_joints.size(), Vec3{0, 0, 0});
        for (std::size_t frame = 0; frame < _motion.frames.size(); ++frame) {
            std::string line;
            for (const std::size_t node : _order) {
                const Joint& joint = _joints[node];
                if (joint.moves)
                    line += joined(joint.offsets[frame]) + " ";
                Vec3& angles = previous[node];
                const Vec3& scene = _motion.frames[frame][node].rotation;
                angles = _options.order == sceneOrder
                             ? scene
                             : anglesInOrder(matrixFromAngles(scene, sceneOrder), _options.order, angles);
                for (const int axis : _options.order)
                    line += formatNumber(angles[static_cast<std::size_t>(axis)]) + " ";
            }
            if (!line.empty())
                line.back() = '\n';
            text += line.empty() ? "\n" : line;
        }
    }

    const SampledMotion& _motion;
    const BvhOptions& _options;
    WrittenBvh _written;
    std::vector<Joint> _joints;
    std::vector<std::size_t> _roots;
    std::vector<std::size_t> _order; ///< joints as the hierarchy lists them, which their numbers follow
    std::size_t _renamed = 0;
};

} // namespace

Vec3 anglesInOrder(const Matrix3& m, const EulerOrder& order, const Vec3& previous) {
    const int a = order[0], b = order[1], c = order[2];
    const double sign = (b - a + 3) % 3 == 1 ? 1.0 : -1.0;
    Vec3 angles{};
    const double sine = std::clamp(sign * m[a][c], -1.0, 1.0);
    angles[b] = std::asin(sine) / degree;
    if (std::hypot(m[a][a], m[a][b]) > 1e-7) {
        angles[b] = std::atan2(sine, std::hypot(m[a][a], m[a][b])) / degree;
        angles[a] = std::atan2(-sign * m[b][c], m[c][c]) / degree;
        angles[c] = std::atan2(-sign * m[a][b], m[a][a]) / degree;
        return nearestAngles(angles, order, previous);
    }
    // With the middle angle at a right angle the last one is free: it stays where it was.
    angles[c] = previous[c];
    Vec3 back{};
    back[c] = -previous[c];
    const Matrix3 rest = product(m, matrixFromAngles(back, order));
    angles[a] = std::atan2(sign * rest[c][b], rest[b][b]) / degree;
    return nearestAngles(angles, order, previous);
}

WrittenBvh writeBvh(const SampledMotion& motion, const BvhOptions& options) {
    return BvhText(motion, options).write();
}

} // namespace ka::motion
