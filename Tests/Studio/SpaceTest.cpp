#include "space/Deformer.h"
#include "space/Gizmo.h"
#include "space/OrbitCamera.h"
#include "space/SharedPictures.h"
#include "space/SpaceFrame.h"

#include <cmath>
#include <gtest/gtest.h>
#include <unistd.h>

namespace ka::studio {

namespace {

std::array<float, 16> movedBy(float x, float y, float z) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

/// One triangle across the Z axis, at the height z.
SpaceMesh triangle(float z) {
    SpaceMesh mesh;
    mesh.positions = {-1, -1, z, 1, -1, z, 0, 1, z};
    mesh.normals = {0, 0, 1, 0, 0, 1, 0, 0, 1};
    mesh.indices = {0, 1, 2};
    return mesh;
}

SpaceScene sceneOf(SpaceMesh mesh, SpacePart part) {
    SpaceScene scene;
    scene.materials.emplace_back();
    scene.meshes.push_back(std::move(mesh));
    scene.parts.push_back(std::move(part));
    scene.movers = {7, 9};
    return scene;
}

SpacePose poseWith(std::vector<std::array<float, 16>> worlds, std::vector<float> weights = {}) {
    SpacePose pose;
    pose.worlds = std::move(worlds);
    pose.weights = std::move(weights);
    pose.looks.resize(1);
    pose.isHidden = {0};
    return pose;
}

WorldCorners deformed(const SpaceScene& scene, const SpacePose& pose) {
    WorldCorners corners;
    deform(scene, scene.parts[0], pose, 0, corners);
    return corners;
}

TEST(Deforming, MovesARigidPartWithWhatItHangsFrom) {
    SpacePart part;
    part.mover = 1;
    const std::array<float, 16> turned = {0, 1, 0, 0, -1, 0, 0, 0,
                                          0, 0, 1, 0, 5,  0, 0, 1}; // a quarter about Z
    const WorldCorners corners = deformed(sceneOf(triangle(0), part), poseWith({movedBy(100, 0, 0), turned}));
    EXPECT_EQ(corners.positions, (std::vector<float>{6, -1, 0, 6, 1, 0, 4, 0, 0}));
    EXPECT_EQ(corners.normals, (std::vector<float>{0, 0, 1, 0, 0, 1, 0, 0, 1})) << "directions are not moved";
}

TEST(Deforming, MixesTheJointsOfASkinByTheirWeights) {
    SpacePart part;
    part.mover = 0; // where the node stands does not count
    part.skin.movers = {0, 1};
    for (const auto& bind : {movedBy(0, 0, 0), movedBy(-1, 0, 0)})
        part.skin.inverseBinds.insert(part.skin.inverseBinds.end(), bind.begin(), bind.end());
    part.skin.indices = {0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0};
    part.skin.weights = {1, 0, 0, 0, 0, 1, 0, 0, 0.25F, 0.75F, 0, 0};
    // The first joint goes 8 along Y, the second stands where it was bound and goes 4 along Y.
    const WorldCorners corners =
        deformed(sceneOf(triangle(0), part), poseWith({movedBy(0, 8, 0), movedBy(1, 4, 0)}));
    EXPECT_EQ(corners.positions, (std::vector<float>{-1, 7, 0, 1, 3, 0, 0, 6, 0}))
        << "1 + 8, 1 + 4, 1 + 2 + 3";
}

TEST(Deforming, AddsMorphsBeforeAnythingElse) {
    SpacePart part;
    part.mover = 0;
    part.morphs = {{1, {0, 0, 10, 0, 0, 0, 0, 0, 0}}, {2, {0, 0, 0, 2, 0, 0, 0, 0, 0}}};
    const WorldCorners corners =
        deformed(sceneOf(triangle(0), part), poseWith({movedBy(0, 1, 0), movedBy(0, 0, 0)}, {0.5F, 1.0F}));
    EXPECT_EQ(corners.positions, (std::vector<float>{-1, 0, 5, 3, 0, 0, 0, 2, 0}));
}

struct RayCase {
    const char* name;
    std::array<float, 3> origin, direction;
    int part;
    float distance;
};

class Meeting : public ::testing::TestWithParam<RayCase> {};

TEST_P(Meeting, FindsWhatIsFirst) {
    SpaceScene scene = sceneOf(triangle(0), {});
    scene.meshes.push_back(triangle(-5));
    SpacePart behind;
    behind.mesh = 1;
    scene.parts.push_back(behind);
    SpacePose pose = poseWith({movedBy(0, 0, 0), movedBy(0, 0, 0)});
    pose.isHidden = {0, 0};
    const SpaceHit hit = meet(scene, pose, GetParam().origin, GetParam().direction);
    EXPECT_EQ(hit.part, GetParam().part);
    if (hit.part >= 0) {
        EXPECT_FLOAT_EQ(hit.distance, GetParam().distance);
    }
}

INSTANTIATE_TEST_SUITE_P(Rays, Meeting,
                         ::testing::Values(RayCase{"ahead", {0, 0, 4}, {0, 0, -1}, 0, 4},
                                           RayCase{"fromBehind", {0, 0, -9}, {0, 0, 1}, 1, 4},
                                           RayCase{"between", {0, 0, -1}, {0, 0, -1}, 1, 4},
                                           RayCase{"beside", {2, 0, 4}, {0, 0, -1}, -1, 0},
                                           RayCase{"away", {0, 0, 4}, {0, 0, 1}, -1, 0},
                                           RayCase{"along", {-5, 0, 0}, {1, 0, 0}, -1, 0}),
                         [](const auto& ray) { return ray.param.name; });

TEST(Meeting, LeavesOutWhatIsHidden) {
    const SpaceScene scene = sceneOf(triangle(0), {});
    SpacePose pose = poseWith({movedBy(0, 0, 0), movedBy(0, 0, 0)});
    pose.isHidden = {1};
    EXPECT_EQ(meet(scene, pose, {0, 0, 4}, {0, 0, -1}).part, -1);
}

TEST(Meeting, TellsTheJointWithMostWeight) {
    SpacePart part;
    part.mover = 0;
    SpaceScene scene = sceneOf(triangle(0), part);
    EXPECT_EQ(jointAt(scene, {0, 0, 1}), 7);
    EXPECT_EQ(jointAt(scene, {-1, 0, 1}), -1);
    scene.parts[0].skin = {
        {0, 1}, {}, {0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0}, {0.4F, 0.6F, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}};
    EXPECT_EQ(jointAt(scene, {0, 0, 1}), 9);
    EXPECT_EQ(jointAt(scene, {0, 1, 1}), 7);
    EXPECT_EQ(jointAt(scene, {0, 2, 1}), 9);
}

TEST(Looking, SendsARayThroughTheVeryPixelWhereAPlaceIsSeen) {
    OrbitCamera camera;
    const QSizeF view(800, 500);
    for (const bool zUp : {false, true})
        for (const QVector3D& place : {QVector3D(0, 0, 0), QVector3D(20, 5, -3), QVector3D(-14, 9, 22)}) {
            camera.setZUp(zUp);
            const Viewpoint from = camera.viewpoint();
            const QVector3D ray = from.ray(from.project(place, view).value(), view);
            const QVector3D wanted = (place - from.eye()).normalized();
            EXPECT_NEAR(static_cast<double>((ray - wanted).length()), 0.0, 1e-4);
        }
}

TEST(Looking, SeesWhatTheDrawingSees) {
    OrbitCamera camera;
    const Viewpoint from = camera.viewpoint();
    const QSizeF view(800, 500);
    const QVector3D place(12, 4, -7);
    const QVector3D drawn = (from.projection(view) * from.view()).map(place); // from -1 to 1
    const QPointF pixel = from.project(place, view).value();
    EXPECT_NEAR(pixel.x(), 400 + 400 * static_cast<double>(drawn.x()), 1e-2);
    EXPECT_NEAR(pixel.y(), 250 - 250 * static_cast<double>(drawn.y()), 1e-2);
}

TEST(Looking, StandsWhereAnotherViewpointIs) {
    OrbitCamera camera, other;
    for (const bool zUp : {false, true}) {
        camera.setZUp(zUp);
        other.setZUp(zUp);
        camera.orbit(77, 31);
        other.standAt(camera.viewpoint());
        EXPECT_NEAR(static_cast<double>((other.eye() - camera.eye()).length()), 0.0, 1e-2);
        EXPECT_NEAR(static_cast<double>((other.target() - camera.target()).length()), 0.0, 1e-2);
    }
}

/// From +Z, a unit of the world at the origin covering ten pixels.
Viewpoint fromTheFront(const QSizeF& view) {
    QMatrix4x4 matrix;
    matrix.lookAt({0, 0, 100}, {}, {0, 1, 0});
    return Viewpoint(matrix,
                     180 / static_cast<float>(M_PI) * std::atan(static_cast<float>(view.height()) / 20 / 100),
                     100);
}

std::array<QVector3D, 3> worldAxes() {
    return {QVector3D(1, 0, 0), QVector3D(0, 1, 0), QVector3D(0, 0, 1)};
}

TEST(Gizmos, AreTakenHoldOfAndMoveByTheWayOfTheHand) {
    const QSizeF view(400, 400);
    const Gizmo arrows(Gizmo::Kind::Arrows, {}, worldAxes(), fromTheFront(view), view);
    EXPECT_NEAR(arrows.handle(0).x(), 270, 0.1) << "seventy pixels long";
    EXPECT_NEAR(arrows.handle(1).y(), 130, 0.1);
    EXPECT_EQ(arrows.axisAt({260, 203}), 0);
    EXPECT_EQ(arrows.axisAt({203, 140}), 1);
    EXPECT_EQ(arrows.axisAt({260, 230}), -1);
    EXPECT_EQ(arrows.axisAt({205, 196}), -1) << "the foot belongs to none";
    const QVector3D moved = arrows.moved(0, {260, 200}, {290, 250});
    EXPECT_NEAR(static_cast<double>(moved.x()), 3.0, 1e-3) << "thirty pixels";
    EXPECT_EQ(moved.y(), 0.0F);
    EXPECT_EQ(arrows.moved(2, {200, 200}, {250, 250}), QVector3D()) << "along the line of sight";
}

TEST(Gizmos, TurnByTheAngleOfTheHand) {
    const QSizeF view(400, 400);
    const Gizmo rings(Gizmo::Kind::Rings, {}, worldAxes(), fromTheFront(view), view);
    EXPECT_EQ(rings.axisAt({200 + 70 / std::sqrt(2.0), 200 - 70 / std::sqrt(2.0)}), 2);
    EXPECT_NEAR(static_cast<double>(rings.turned(2, {270, 200}, {200, 130})), 90, 1e-3);
    EXPECT_NEAR(static_cast<double>(rings.turned(2, {130, 201}, {130, 199})), -2 * 57.2958 / 70, 1e-2)
        << "over the place where angles begin anew";
    std::array<QVector3D, 3> away = worldAxes();
    away[2] = {0, 0, -1};
    const Gizmo reversed(Gizmo::Kind::Rings, {}, away, fromTheFront(view), view);
    EXPECT_NEAR(static_cast<double>(reversed.turned(2, {270, 200}, {200, 130})), -90, 1e-3);
}

SpaceScene largeScene() {
    SpacePart part;
    part.node = 5;
    part.mover = 1;
    part.skin = {{0, 1},
                 std::vector<float>(32, 0.5F),
                 std::vector<std::uint32_t>(12, 1),
                 std::vector<float>(12, 0.25F)};
    part.morphs = {{3, std::vector<float>(9, 2.0F)}};
    SpaceScene scene = sceneOf(triangle(3), part);
    scene.meshes[0].colors.assign(12, 0.5F);
    scene.meshes[0].texCoords = {0, 0, 1, 0, 0, 1};
    scene.materials[0] = {
        8, {1, 0.5F, 0.25F, 0.125F}, {1, 2, 3}, QStringLiteral("/a/ü.png"), QByteArray("\0PNG", 4)};
    return scene;
}

TEST(Messages, BringASceneOverWhole) {
    const SpaceScene sent = largeScene();
    const QByteArray bytes = bytesOf(sent);
    QDataStream stream(bytes);
    SpaceScene got;
    read(stream, got);
    EXPECT_EQ(stream.status(), QDataStream::Ok);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_EQ(got.materials[0].color, sent.materials[0].color);
    EXPECT_EQ(got.materials[0].glow, sent.materials[0].glow);
    EXPECT_EQ(got.materials[0].pictureFile, sent.materials[0].pictureFile);
    EXPECT_EQ(got.materials[0].picture, sent.materials[0].picture);
    EXPECT_EQ(got.meshes[0].positions, sent.meshes[0].positions);
    EXPECT_EQ(got.meshes[0].colors, sent.meshes[0].colors);
    EXPECT_EQ(got.meshes[0].texCoords, sent.meshes[0].texCoords);
    EXPECT_EQ(got.meshes[0].indices, sent.meshes[0].indices);
    EXPECT_EQ(got.parts[0].mover, 1);
    EXPECT_EQ(got.parts[0].skin.inverseBinds, sent.parts[0].skin.inverseBinds);
    EXPECT_EQ(got.parts[0].skin.weights, sent.parts[0].skin.weights);
    EXPECT_EQ(got.parts[0].morphs[0].offsets, sent.parts[0].morphs[0].offsets);
    EXPECT_EQ(got.movers, sent.movers);
    EXPECT_EQ(bytesOf(got), bytes);
}

TEST(Messages, AreRefusedWhereTheyAreCutOff) {
    const QByteArray bytes = bytesOf(largeScene());
    for (int length = 0; length < bytes.size(); length += 3) {
        const QByteArray cut = bytes.left(length);
        QDataStream stream(cut);
        SpaceScene got;
        read(stream, got);
        EXPECT_NE(stream.status(), QDataStream::Ok) << length << " bytes of " << bytes.size();
    }
}

TEST(Pictures, AreSeenFromBothSidesAndGrow) {
    SharedPictures ours;
    ASSERT_GE(ours.descriptor(), 0);
    SharedPictures theirs(dup(ours.descriptor()));
    EXPECT_TRUE(theirs.picture(0, {4, 4}).isNull()) << "there is no room yet";
    for (const QSize size : {QSize(4, 4), QSize(300, 200), QSize(10, 10)}) {
        ASSERT_TRUE(ours.makeRoom(size));
        for (const quint32 place : {0U, 1U}) {
            QImage written = theirs.picture(place, size);
            ASSERT_EQ(written.size(), size);
            written.fill(place == 0 ? Qt::red : Qt::green);
        }
        EXPECT_EQ(ours.picture(0, size).pixelColor(size.width() - 1, size.height() - 1), QColor(Qt::red));
        EXPECT_EQ(ours.picture(1, size).pixelColor(0, 0), QColor(Qt::green));
    }
    EXPECT_TRUE(theirs.picture(2, {4, 4}).isNull());
    EXPECT_TRUE(theirs.picture(0, {4000, 4000}).isNull());
}

} // namespace

} // namespace ka::studio
