#include "readers/MeshCheck.h"

#include "kaMotion/Text.h"

#include <algorithm>
#include <cmath>

namespace ka::motion {

namespace {

bool areFinite(const std::vector<float>& numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](float number) { return std::isfinite(number); });
}

class MeshCheck {
  public:
    explicit MeshCheck(Motion& motion) : _motion(motion) {}

    void run(std::vector<std::string>& findings) {
        for (MotionSkin& skin : _motion.skins)
            checkSkin(skin);
        for (MotionMesh& mesh : _motion.meshes)
            check(mesh);
        auto& meshes = _motion.meshes;
        const auto isUseless = [](const MotionMesh& mesh) {
            return mesh.nodes.empty() || mesh.indices.empty();
        };
        meshes.erase(std::remove_if(meshes.begin(), meshes.end(), isUseless), meshes.end());
        tell(findings, _positions, "mesh", " with corners that are not finite");
        tell(findings, _triangles, "triangle", " of corners that do not exist");
        tell(findings, _lists, "list", " of normals, colours or coordinates that does not fit its mesh");
        tell(findings, _skins, "skin", " that does not fit its mesh or its nodes");
        tell(findings, _morphs, "morph target", " that does not fit its mesh");
    }

  private:
    static void tell(std::vector<std::string>& findings, std::size_t count, const char* what,
                     const char* why) {
        if (count > 0)
            findings.push_back("dropped " + counted(count, what) + why);
    }

    void checkSkin(MotionSkin& skin) {
        const bool isFit = skin.inverseBinds.size() == 16 * skin.joints.size() &&
                           areFinite(skin.inverseBinds) &&
                           std::all_of(skin.joints.begin(), skin.joints.end(),
                                       [&](std::uint32_t node) { return node < _motion.nodes.size(); });
        if (!isFit)
            skin = {};
    }

    void check(MotionMesh& mesh) {
        auto& nodes = mesh.nodes;
        nodes.erase(std::remove_if(nodes.begin(), nodes.end(),
                                   [&](std::uint32_t node) { return node >= _motion.nodes.size(); }),
                    nodes.end());
        if (mesh.positions.size() % 3 != 0 || !areFinite(mesh.positions)) {
            ++_positions;
            mesh.indices.clear();
            return;
        }
        checkTriangles(mesh);
        checkList(mesh.normals, 3 * mesh.corners());
        checkList(mesh.colors, 4 * mesh.corners());
        checkList(mesh.texCoords, 2 * mesh.corners());
        checkBinding(mesh);
        auto& morphs = mesh.morphs;
        const auto isUnfit = [&](const MotionMorph& morph) {
            return morph.offsets.size() != mesh.positions.size() || !areFinite(morph.offsets) ||
                   !std::isfinite(morph.weight);
        };
        _morphs += static_cast<std::size_t>(std::count_if(morphs.begin(), morphs.end(), isUnfit));
        for (MotionMorph& morph : morphs)
            if (isUnfit(morph)) // it keeps its place, which curves name
                morph.offsets.assign(mesh.positions.size(), 0.0F), morph.weight = 0.0F;
        const auto materials = static_cast<std::int32_t>(_motion.materials.size());
        if (mesh.material < 0 || mesh.material >= materials)
            mesh.material = MotionMesh::none;
    }

    void checkTriangles(MotionMesh& mesh) {
        std::vector<std::uint32_t> kept;
        for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
            const auto first = mesh.indices.begin() + static_cast<std::ptrdiff_t>(i);
            if (std::all_of(first, first + 3, [&](std::uint32_t corner) { return corner < mesh.corners(); }))
                kept.insert(kept.end(), first, first + 3);
            else
                ++_triangles;
        }
        mesh.indices = std::move(kept);
    }

    void checkList(std::vector<float>& list, std::size_t size) {
        if (list.empty() || (list.size() == size && areFinite(list)))
            return;
        ++_lists;
        list.clear();
    }

    void checkBinding(MotionMesh& mesh) {
        const bool hasSkin = mesh.skin >= 0 && static_cast<std::size_t>(mesh.skin) < _motion.skins.size();
        const std::size_t joints =
            hasSkin ? _motion.skins[static_cast<std::size_t>(mesh.skin)].joints.size() : 0;
        const bool isFit = joints > 0 && mesh.joints.size() == 4 * mesh.corners() &&
                           mesh.weights.size() == 4 * mesh.corners() && areFinite(mesh.weights) &&
                           std::all_of(mesh.joints.begin(), mesh.joints.end(),
                                       [&](std::uint32_t joint) { return joint < joints; });
        if (isFit)
            return;
        if (mesh.skin != MotionMesh::none)
            ++_skins;
        mesh.skin = MotionMesh::none;
        mesh.joints.clear();
        mesh.weights.clear();
    }

    Motion& _motion;
    std::size_t _positions = 0, _triangles = 0, _lists = 0, _skins = 0, _morphs = 0;
};

} // namespace

void checkMeshes(Motion& motion, std::vector<std::string>& findings) {
    MeshCheck(motion).run(findings);
}

} // namespace ka::motion
