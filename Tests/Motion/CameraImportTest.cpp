#include "GltfFile.h"
#include "MotionTesting.h"
#include "readers/AssimpReader.h"
#include "readers/ConfinedFolder.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSpotLight.h>
#include <cmath>
#include <gtest/gtest.h>
#include <kaMotion/Exporting.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <optional>

namespace ka::motion {
namespace {

using nlohmann::json;
using testing::TemporaryFolder;

constexpr const char* lightsName = "KHR_lights_punctual";

/// A camera, a sun and a torch, a triangle of one material with two shapes, and a hidden node.
GltfFile stage() {
    GltfFile file;
    json& document = file.document;
    document["nodes"] = json::array({{{"name", "tripod"}, {"camera", 0}, {"translation", {0, 1, 5}}},
                                     {{"name", "sky"}, {"extensions", {{lightsName, {{"light", 0}}}}}},
                                     {{"name", "hand"}, {"extensions", {{lightsName, {{"light", 1}}}}}},
                                     {{"name", "face"}, {"mesh", 0}},
                                     {{"name", "hidden"}}});
    document["extensionsUsed"] = {lightsName, "KHR_animation_pointer", "KHR_node_visibility"};
    document["scene"] = 0;
    document["scenes"] = json::array({{{"nodes", {0, 1, 2, 3, 4}}}});
    document["nodes"][4]["extensions"]["KHR_node_visibility"]["visible"] = false;
    document["cameras"] = json::array(
        {{{"name", "eye"}, {"type", "perspective"}, {"perspective", {{"yfov", 0.5}, {"znear", 1}}}}});
    document["extensions"][lightsName]["lights"] =
        json::array({{{"name", "sun"}, {"type", "directional"}, {"color", {1, 0.5, 0.25}}, {"intensity", 2}},
                     {{"name", "torch"},
                      {"type", "spot"},
                      {"color", {1, 0.5, 0}},
                      {"intensity", 10},
                      {"spot", {{"innerConeAngle", 0.1}, {"outerConeAngle", 0.3}}}}});
    document["materials"] = json::array({{{"name", "paint"}}});
    const int corners = file.floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
    const int smile = file.floats({0, 0, 0, 0, 0, 1, 0, 0, 0}, "VEC3");
    const int frown = file.floats({0, 0, 0, 0, 0, 0, 0, 0, 2}, "VEC3");
    document["meshes"] = json::array(
        {{{"primitives",
           json::array({{{"attributes", {{"POSITION", corners}}},
                         {"material", 0},
                         {"targets", json::array({{{"POSITION", smile}}, {{"POSITION", frown}}})}}})}}});
    return file;
}

void animate(GltfFile& file, const std::string& pointer, int times, int values) {
    file.channel(0, "pointer", times, values, "LINEAR");
    json& target = file.document["animations"][0]["channels"].back()["target"];
    target.erase("node");
    target["extensions"]["KHR_animation_pointer"]["pointer"] = pointer;
}

class Stage : public ::testing::Test {
  protected:
    void open(GltfFile file) {
        ProjectFiles files;
        files.file = _folder.put("stage.gltf", file.text());
        files.import.framesPerSecond = 10.0;
        _project.emplace(files);
    }

    osg::NodePtr node(const std::string& name) const {
        std::vector<osg::NodePtr> pending{_project->root()};
        while (!pending.empty()) {
            const osg::NodePtr next = pending.back();
            pending.pop_back();
            if (nodeName(next) == name)
                return next;
            for (osg::UInt32 i = 0; i < next->getNChildren(); ++i)
                pending.push_back(next->getChild(i));
        }
        return osg::NullFC;
    }

    template <class Ptr>
    Ptr core(const std::string& name) const {
        const osg::NodePtr found = node(name);
        return found == osg::NullFC ? Ptr() : Ptr::dcast(found->getCore());
    }

    void show(float frame) const { evaluate(_project->playable(""), frame); }

    TemporaryFolder _folder;
    std::optional<Project> _project;
};

TEST_F(Stage, HasACameraBelowTheNodeThatCarriesIt) {
    open(stage());
    const auto camera = core<osg::CameraSettingPtr>("eye");
    ASSERT_NE(camera, osg::NullFC);
    EXPECT_EQ(nodeName(node("eye")->getParent()), "tripod");
    EXPECT_FLOAT_EQ(camera->getFieldOfView(), 0.5F);
    EXPECT_EQ(camera->getFrom(), osg::Pnt3f(0, 0, 0));
    EXPECT_EQ(camera->getAt(), osg::Pnt3f(0, 0, -1));
    EXPECT_EQ(camera->getUp(), osg::Vec3f(0, 1, 0));
    EXPECT_EQ(_project->report().cameras, 1U);
}

TEST_F(Stage, HasLightsOfTheirKindsWithColourTimesIntensity) {
    open(stage());
    const auto sun = core<osg::DirectionalLightPtr>("sun");
    ASSERT_NE(sun, osg::NullFC);
    EXPECT_EQ(sun->getDiffuse(), osg::Color4f(2, 1, 0.5F, 1));
    EXPECT_EQ(sun->getDirection(), osg::Vec3f(0, 0, -1));
    EXPECT_EQ(nodeName(sun->getBeacon()), "sky");
    const auto torch = core<osg::SpotLightPtr>("torch");
    ASSERT_NE(torch, osg::NullFC);
    EXPECT_EQ(torch->getDiffuse(), osg::Color4f(10, 5, 0, 1));
    EXPECT_FLOAT_EQ(torch->getSpotCutOff(), 0.3F);
    // Half as bright at 0.2 radians, in the middle between 0.1 and 0.3.
    EXPECT_NEAR(std::pow(std::cos(0.2F), torch->getSpotExponent()), 0.5F, 1e-5F);
    EXPECT_EQ(torch->getConstantAttenuation(), 0.0F);
    EXPECT_EQ(torch->getQuadraticAttenuation(), 1.0F);
    EXPECT_EQ(_project->report().lights, 2U);
}

TEST_F(Stage, InAnotherUnitIsAsBrightAtTheSamePlace) {
    GltfFile file = stage();
    ProjectFiles files;
    files.file = _folder.put("stage.gltf", file.text());
    files.import.unit = 100.0;
    _project.emplace(files);
    // One metre is a hundred units: 1 / (1e-4 · 100²) is 1.
    EXPECT_FLOAT_EQ(core<osg::SpotLightPtr>("torch")->getQuadraticAttenuation(), 1e-4F);
}

TEST_F(Stage, GoesAwayWithItsLights) {
    open(stage());
    const osg::UInt32 id = node("torch").getFieldContainerId();
    _project.reset();
    EXPECT_EQ(osg::FieldContainerFactory::the()->getContainer(id), osg::NullFC);
}

TEST_F(Stage, HidesWhatTheFileHides) {
    open(stage());
    EXPECT_FALSE(node("hidden")->getActive());
    EXPECT_TRUE(node("face")->getActive());
}

TEST_F(Stage, IsAnimatedThroughPointers) {
    GltfFile file = stage();
    const int times = file.floats({0, 1}, "SCALAR");
    animate(file, "/cameras/0/perspective/yfov", times, file.floats({0.5F, 0.9F}, "SCALAR"));
    animate(file, "/extensions/KHR_lights_punctual/lights/0/color", times,
            file.floats({0, 0, 0, 1, 2, 3}, "VEC3"));
    animate(file, "/extensions/KHR_lights_punctual/lights/1/intensity", times, file.floats({0, 8}, "SCALAR"));
    animate(file, "/extensions/KHR_lights_punctual/lights/1/spot/outerConeAngle", times,
            file.floats({0.2F, 0.4F}, "SCALAR"));
    animate(file, "/materials/0/pbrMetallicRoughness/baseColorFactor", times,
            file.floats({0, 0, 0, 1, 1, 0.5F, 0.25F, 0.5F}, "VEC4"));
    animate(file, "/materials/0/emissiveFactor", times, file.floats({0, 0, 0, 0.5F, 0, 1}, "VEC3"));
    animate(file, "/nodes/4/extensions/KHR_node_visibility/visible", times, file.floats({0, 1}, "SCALAR"));
    animate(file, "/nodes/4/translation", times, file.floats({0, 0, 0, 4, 6, 8}, "VEC3"));
    animate(file, "/materials/0/pbrMetallicRoughness/roughnessFactor", times, file.floats({0, 1}, "SCALAR"));
    open(file);
    show(5.0F); // half a second
    EXPECT_NEAR(core<osg::CameraSettingPtr>("eye")->getFieldOfView(), 0.7F, 1e-6F);
    // Its intensity of 2 stays, and colours go from none to 1, 2, 3.
    EXPECT_NEAR(core<osg::DirectionalLightPtr>("sun")->getDiffuse()[2], 3.0F, 1e-5F);
    // Its colour of 1, 0.5, 0 stays.
    EXPECT_NEAR(core<osg::SpotLightPtr>("torch")->getDiffuse()[0], 4.0F, 1e-5F);
    EXPECT_NEAR(core<osg::SpotLightPtr>("torch")->getDiffuse()[1], 2.0F, 1e-5F);
    EXPECT_NEAR(core<osg::SpotLightPtr>("torch")->getSpotCutOff(), 0.3F, 1e-6F);
    const auto group = core<osg::MaterialGroupPtr>("paint");
    ASSERT_NE(group, osg::NullFC);
    const auto paint = osg::SimpleMaterialPtr::dcast(group->getMaterial());
    EXPECT_NEAR(paint->getDiffuse()[1], 0.25F, 1e-6F);
    EXPECT_NEAR(paint->getTransparency(), 0.25F, 1e-6F);
    EXPECT_NEAR(paint->getEmission()[2], 0.5F, 1e-6F);
    EXPECT_EQ(node("face")->getChild(0)->getNChildren(), 2U)
        << "the geometry with its shapes stands where it stood";
    show(10.0F);
    EXPECT_TRUE(node("hidden")->getActive());
    const auto& notes = _project->report().notes;
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NE(notes[0].find("roughnessFactor"), std::string::npos) << notes[0];
}

TEST_F(Stage, KeepsItsCamerasAndLightsInAScene) {
    GltfFile file = stage();
    const int times = file.floats({0, 1}, "SCALAR");
    animate(file, "/cameras/0/perspective/yfov", times, file.floats({0.5F, 0.9F}, "SCALAR"));
    animate(file, "/materials/0/emissiveFactor", times, file.floats({0, 0, 0, 0.5F, 0, 1}, "VEC3"));
    open(file);
    const SavedFiles saved{_folder.at("stage.osg"), _folder.at("stage.xml")};
    EXPECT_TRUE(save(_project->root(), saved).empty());
    _project.reset();
    ProjectFiles files;
    files.file = saved.scene;
    files.animation = saved.animation;
    _project.emplace(files);
    show(5.0F);
    EXPECT_NEAR(core<osg::CameraSettingPtr>("eye")->getFieldOfView(), 0.7F, 1e-6F);
    EXPECT_EQ(nodeName(core<osg::SpotLightPtr>("torch")->getBeacon()), "hand");
    const auto paint = osg::SimpleMaterialPtr::dcast(core<osg::MaterialGroupPtr>("paint")->getMaterial());
    EXPECT_NEAR(paint->getEmission()[2], 0.5F, 1e-6F);
}

TEST_F(Stage, KeepsItsCamerasLightsAndWeightsInAnExport) {
    GltfFile file = stage();
    const int times = file.floats({0, 1, 3}, "SCALAR");
    file.channel(3, "weights", times, file.floats({0, 1, 1, 0.5F, 0.25F, 0}, "SCALAR"), "LINEAR");
    open(file);
    const ExportedFile exported = exportAs(ExportKind::Glb, *_project, exportedObjects(), ExportOptions());
    _project.reset();
    ProjectFiles files;
    files.file = _folder.put("again.glb", exported.bytes);
    files.import.framesPerSecond = 25.0;
    _project.emplace(files);
    EXPECT_EQ(nodeName(node("eye")->getParent()), "tripod");
    EXPECT_FLOAT_EQ(core<osg::CameraSettingPtr>("eye")->getFieldOfView(), 0.5F);
    EXPECT_EQ(core<osg::DirectionalLightPtr>("sun")->getDiffuse(), osg::Color4f(2, 1, 0.5F, 1));
    const auto torch = core<osg::SpotLightPtr>("torch");
    EXPECT_FLOAT_EQ(torch->getSpotCutOff(), 0.3F);
    EXPECT_NEAR(std::pow(std::cos(0.2F), torch->getSpotExponent()), 0.5F, 1e-4F);
    EXPECT_FALSE(node("hidden")->getActive());
    show(20.0F); // at 25 frames a second of the export that is two seconds of the source at 10
    EXPECT_NEAR(core<osg::MorphTargetPtr>("shape 1")->getWeight(), 0.625F, 1e-4F);
    EXPECT_NEAR(core<osg::MorphTargetPtr>("shape 2")->getWeight(), 0.25F, 1e-4F);
}

TEST(AssimpStage, HasTheSameCamerasLightsAndShapes) {
    GltfFile file = stage();
    const int times = file.floats({0, 1}, "SCALAR");
    file.channel(3, "weights", times, file.floats({0, 1, 1, 0.5F}, "SCALAR"), "LINEAR");
    const TemporaryFolder folder;
    const ConfinedFolder confined(folder.put("stage.gltf", file.text()));
    Motion motion = readWithAssimp(confined);
    checkMotion(motion);
    ASSERT_EQ(motion.cameras.size(), 1U);
    ASSERT_EQ(motion.cameras[0].nodes.size(), 1U);
    EXPECT_EQ(motion.nodes[motion.cameras[0].nodes[0]].name, "tripod");
    ASSERT_EQ(motion.lights.size(), 2U);
    EXPECT_EQ(motion.lights[0].kind, LightKind::Directional);
    EXPECT_EQ(motion.lights[1].kind, LightKind::Spot);
    EXPECT_NEAR(motion.lights[1].color[1], 5.0, 1e-5);
    ASSERT_EQ(motion.takes.size(), 1U);
    ASSERT_EQ(motion.takes[0].tracks.size(), 1U);
    const MotionTrack& track = motion.takes[0].tracks[0];
    EXPECT_EQ(motion.nodes[track.node].name, "face");
    ASSERT_EQ(track.weights.size(), 2U);
    ASSERT_EQ(track.weights[1].keys.size(), 2U);
    EXPECT_NEAR(track.weights[1].keys[0].value[0], 1.0, 1e-6);
    EXPECT_NEAR(track.weights[1].keys[1].value[0], 0.5, 1e-6);
    EXPECT_NEAR(track.weights[1].keys[1].time, 1.0, 1e-6);
}

} // namespace
} // namespace ka::motion
