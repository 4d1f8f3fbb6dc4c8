#include "MotionTesting.h"

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <kaAnimationManager.h>
#include <kaMotion/Exporting.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>

using namespace ka::motion;

namespace {

constexpr const char* models = "/usr/share/assimp/models/";

std::vector<osg::NodePtr> geometriesBelow(const osg::NodePtr& root) {
    std::vector<osg::NodePtr> found, pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (osg::GeometryPtr::dcast(node->getCore()) != osg::NullFC)
            found.push_back(node);
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.push_back(node->getChild(i));
    }
    return found;
}

osg::GeometryPtr geometry(const osg::NodePtr& node) {
    return osg::GeometryPtr::dcast(node->getCore());
}

ProjectFiles model(const std::string& name) {
    ProjectFiles files;
    files.file = models + name;
    return files;
}

} // namespace

TEST(ImportedMesh, OfABoxHasItsTrianglesNormalsCoordinatesAndPicture) {
    struct Case {
        const char* file;
        bool isInside; ///< the picture
    };
    for (const Case& one : {Case{"glTF2/BoxTextured-glTF/BoxTextured.gltf", false},
                            Case{"glTF2/BoxTextured-glTF-Binary/BoxTextured.glb", true}}) {
        SCOPED_TRACE(one.file);
        const Project project(model(one.file));
        const auto found = geometriesBelow(project.root());
        ASSERT_EQ(found.size(), 1U);
        const osg::GeometryPtr box = geometry(found[0]);
        EXPECT_EQ(box->getPositions()->getSize(), 24U);
        EXPECT_EQ(box->getNormals()->getSize(), 24U);
        EXPECT_EQ(box->getTexCoords()->getSize(), 24U);
        EXPECT_EQ(box->getIndices()->getSize(), 36U);
        EXPECT_EQ((*box->getLengths()->getMFLengths())[0], 36U);
        for (const osg::Pnt3f& corner : *box->getPositions()->getMFPositions())
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_FLOAT_EQ(std::abs(corner[axis]), 0.5F);
        for (const osg::Vec3f& normal : *box->getNormals()->getMFNormals())
            EXPECT_FLOAT_EQ(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2], 1.0F);
        const auto material = osg::SimpleMaterialPtr::dcast(box->getMaterial());
        ASSERT_NE(material, osg::NullFC);
        const auto picture = osg::PicturePtr::dcast(material->findAttachment(osg::Picture::getClassType()));
        ASSERT_NE(picture, osg::NullFC);
        EXPECT_EQ(picture->getFileName().empty(), one.isInside);
        EXPECT_EQ(picture->getMFBytes()->empty(), !one.isInside);
        if (one.isInside) {
            EXPECT_EQ((*picture->getMFBytes())[1], 'P') << "a PNG file begins with 0x89 P N G";
        }
    }
}

TEST(ImportedMesh, HandsOnPicturesOfItsOwnFolderAlone) {
    const auto pictureOf = [](const Project& project) {
        const auto found = geometriesBelow(project.root());
        const auto material = osg::SimpleMaterialPtr::dcast(geometry(found.at(0))->getMaterial());
        return osg::PicturePtr::dcast(material->findAttachment(osg::Picture::getClassType()));
    };
    const auto exported = [](const Project& project) { return exportAs(ExportKind::Glb, project, {}, {}); };
    const ka_test::TemporaryFolder folder, elsewhere;
    const std::string original = std::string(models) + "glTF2/BoxTextured-glTF/CesiumLogoFlat.png";
    const std::string own = folder.at("own.png"), strange = elsewhere.at("strange.png");
    ASSERT_TRUE(std::filesystem::copy_file(original, own) && std::filesystem::copy_file(original, strange));
    std::filesystem::create_symlink(strange, folder.at("link.png"));
    {
        const Project project(model("glTF2/BoxTextured-glTF/BoxTextured.gltf"));
        EXPECT_NE(exported(project).bytes.find("\x89PNG"), std::string::npos);
        ASSERT_TRUE(save(project.root(), {folder.at("box.osg"), ""}).empty());
    }
    struct Case {
        std::string name;
        bool isTaken;
    };
    for (const Case& one : {Case{own, true}, Case{"own.png", true}, Case{strange, false},
                            Case{folder.at("link.png"), false}, Case{folder.at("../strange.png"), false},
                            Case{folder.at("missing.png"), false}, Case{"/dev/zero", false}}) {
        SCOPED_TRACE(one.name);
        ProjectFiles files;
        files.file = folder.at("box.osg");
        const Project project(files);
        pictureOf(project)->setFileName(one.name);
        const ExportedFile file = exported(project);
        EXPECT_EQ(file.bytes.find("\x89PNG") != std::string::npos, one.isTaken);
        const auto& notes = file.report.notes;
        const auto isAboutIt = [](const std::string& note) { return note.find("left out the picture") == 0; };
        EXPECT_EQ(std::any_of(notes.begin(), notes.end(), isAboutIt), !one.isTaken);
    }
}

TEST(ImportedMesh, WithASkinIsBoundToItsJointsAfterSavingToo) {
    ka::motion::testing::TemporaryFolder folder;
    const std::string scene = folder.at("skin.osg"), document = folder.at("skin.xml");
    for (const bool isSaved : {false, true}) {
        ProjectFiles files = model("glTF2/simple_skin/simple_skin.gltf");
        if (isSaved) {
            files.file = scene;
            files.animation = document;
        }
        const Project project(files);
        const auto found = geometriesBelow(project.root());
        ASSERT_EQ(found.size(), 1U);
        const auto skin = osg::SkinPtr::dcast(found[0]->findAttachment(osg::Skin::getClassType()));
        ASSERT_NE(skin, osg::NullFC);
        ASSERT_EQ(skin->getMFJoints()->getSize(), 2U);
        ASSERT_EQ(skin->getMFInverseBinds()->getSize(), 2U);
        const osg::UInt32 corners = geometry(found[0])->getPositions()->getSize();
        EXPECT_EQ(corners, 10U);
        EXPECT_EQ(skin->getMFIndices()->getSize(), 4 * corners);
        EXPECT_EQ(skin->getMFWeights()->getSize(), 4 * corners);
        // At rest every joint's world matrix is undone by its inverse bind, up to one offset common to all.
        const osg::NodePtr joint = (*skin->getMFJoints())[1];
        ASSERT_NE(joint, osg::NullFC);
        EXPECT_NE(osg::NodePtr(joint)->getParent(), osg::NullFC);
        if (!isSaved) {
            EXPECT_TRUE(save(project.root(), {scene, document}).empty());
        }
    }
}

TEST(ImportedMesh, WithMorphTargetsIsMovedByCurvesOfTheirWeights) {
    const Project project(model("glTF2/glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf"));
    const auto found = geometriesBelow(project.root());
    ASSERT_EQ(found.size(), 1U);
    ASSERT_EQ(found[0]->getNChildren(), 2U);
    const auto shape = osg::MorphTargetPtr::dcast(found[0]->getChild(0)->getCore());
    ASSERT_NE(shape, osg::NullFC);
    EXPECT_EQ(shape->getMFOffsets()->getSize(), geometry(found[0])->getPositions()->getSize());
    const auto objects = project.playable("");
    ASSERT_EQ(objects.size(), 1U);
    float largest = 0.0F;
    const auto [begin, end] = frameRange(objects);
    for (float frame = begin; frame <= end; ++frame) {
        evaluate(objects, frame);
        largest = std::max(largest, shape->getWeight());
        EXPECT_GE(shape->getWeight(), -0.1F);
    }
    EXPECT_GT(largest, 0.9F) << "the first shape is reached in full";
}

TEST(ImportedMesh, OfAnyOtherKindOfFileComesAsTriangles) {
    struct Case {
        const char* file;
        std::size_t triangles;
    };
    // A box of six squares has twelve triangles.
    for (const Case& one :
         {Case{"OBJ/box.obj", 12}, Case{"FBX/box.fbx", 12}, Case{"3DS/RotatingCube.3DS", 12}}) {
        SCOPED_TRACE(one.file);
        const Project project(model(one.file));
        EXPECT_EQ(project.report().triangles, one.triangles);
        EXPECT_FALSE(geometriesBelow(project.root()).empty());
    }
}

TEST(ImportedMesh, WithTrianglesOfNoCornersLosesThoseAlone) {
    Motion motion;
    motion.nodes = {{"n", MotionNode::noParent, {}, {}, {1, 1, 1}, sceneOrder}};
    MotionMesh mesh;
    mesh.nodes = {0, 7};
    mesh.positions = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    mesh.indices = {0, 1, 2, 0, 1, 3};
    mesh.normals = {0, 0, 1};
    mesh.skin = 4;
    mesh.material = 9;
    motion.meshes = {mesh};
    EXPECT_EQ(checkMotion(motion), 3U); // a triangle, a list of normals, a skin
    ASSERT_EQ(motion.meshes.size(), 1U);
    EXPECT_EQ(motion.meshes[0].nodes, std::vector<std::uint32_t>{0});
    EXPECT_EQ(motion.meshes[0].indices, (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_TRUE(motion.meshes[0].normals.empty());
    EXPECT_EQ(motion.meshes[0].skin, MotionMesh::none);
    EXPECT_EQ(motion.meshes[0].material, MotionMesh::none);
}

namespace {

/// Everything that is drawn, in an order that does not depend on how it is kept: corners in the world, triangle by
/// triangle.
std::size_t drawnCorners(const osg::NodePtr& root, double& sum) {
    std::size_t corners = 0;
    for (const osg::NodePtr& node : geometriesBelow(root)) {
        const osg::Matrix world = node->getToWorld();
        const auto& positions = *geometry(node)->getPositions()->getMFPositions();
        for (const osg::UInt32 index : *geometry(node)->getIndices()->getMFIndices()) {
            const osg::Pnt3f& p = positions[index];
            for (osg::UInt32 row = 0; row < 3; ++row)
                sum += std::abs(static_cast<double>(world[0][row] * p[0] + world[1][row] * p[1] +
                                                    world[2][row] * p[2] + world[3][row])) *
                       (row + 1.0);
            ++corners;
        }
    }
    return corners;
}

} // namespace

TEST(ExportedMesh, ComesBackAsItWas) {
    const ka::motion::testing::TemporaryFolder folder;
    for (const char* name : {"glTF2/BoxTextured-glTF/BoxTextured.gltf", "FBX/huesitos.fbx", "MS3D/jeep1.ms3d",
                             "glTF2/simple_skin/simple_skin.gltf",
                             "glTF2/glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf"}) {
        SCOPED_TRACE(name);
        double before = 0.0, after = 0.0;
        std::size_t corners = 0, shapes = 0, skins = 0;
        const auto count = [&](const osg::NodePtr& root, std::size_t& shapesThere, std::size_t& skinsThere) {
            for (const osg::NodePtr& node : geometriesBelow(root)) {
                shapesThere += node->getNChildren();
                skinsThere += node->findAttachment(osg::Skin::getClassType()) != osg::NullFC ? 1 : 0;
            }
        };
        ProjectFiles files = model(name);
        {
            const Project project(files);
            const ExportedFile file = exportAs(ExportKind::Glb, project, exportedObjects(), {});
            corners = drawnCorners(project.root(), before);
            count(project.root(), shapes, skins);
            EXPECT_GT(file.report.meshes, 0U);
            files.file = folder.put("out.glb", file.bytes);
        }
        const Project project(files);
        std::size_t shapesAgain = 0, skinsAgain = 0;
        count(project.root(), shapesAgain, skinsAgain);
        EXPECT_EQ(drawnCorners(project.root(), after), corners);
        EXPECT_NEAR(after, before, 1e-4 * before);
        EXPECT_EQ(shapesAgain, shapes);
        EXPECT_EQ(skinsAgain, skins);
    }
}
