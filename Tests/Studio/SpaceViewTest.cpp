#include "SmallModels.h"
#include "WindowFixture.h"
#include "space/Deformer.h"
#include "space/SceneIntake.h"
#include "views/SceneView.h"
#include "views/SpaceDrawing.h"

#include <QAction>
#include <QFileInfo>
#include <csignal>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

/// Long for a machine that is busy with others; drawing takes a part of a second.
constexpr int Patience = 60000;

bool isLike(const QColor& seen, const QColor& wanted) {
    const auto bright = [](int part) { return part > 140; };
    const auto dark = [](int part) { return part < 110; };
    return (wanted.red() > 0 ? bright(seen.red()) : dark(seen.red())) &&
           (wanted.green() > 0 ? bright(seen.green()) : dark(seen.green())) &&
           (wanted.blue() > 0 ? bright(seen.blue()) : dark(seen.blue()));
}

/// The view drawn with OpenGL, on a display that may have it in software only.
class Space : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        window().resize(1200, 800);
    }
    void TearDown() override {
        qunsetenv("QT_XCB_GL_INTEGRATION");
        WindowFixture::TearDown();
    }

    SceneView& view() { return window().sceneView(); }

    void openModel(const std::string& name, const std::string& content, bool isDrawn = true) {
        trigger("drawOpenGL");
        window().openPath(QString::fromStdString(put(name, content)));
        const QString shown = QString::fromStdString(name);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return window().session().files().shownName() == shown || !_messages.isEmpty(); },
            Patience));
        ASSERT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
        if (isDrawn)
            waitForPicture();
    }
    /// Until what is shown is how things are.
    void waitForPicture() {
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return view().isDrawnByOpenGL() && view().isUpToDate(); }, Patience))
            << view().note().toStdString();
    }
    QColor colorAt(const QVector3D& place) {
        const QPoint pixel =
            view().viewpoint().project(place, view().size()).value_or(QPointF(-1, -1)).toPoint();
        return view().grab().toImage().pixelColor(pixel);
    }
    QPoint pixelAt(const QVector3D& place) {
        return view().viewpoint().project(place, view().size()).value_or(QPointF(-1, -1)).toPoint();
    }
    int joint(const char* name) {
        for (std::size_t i = 0; i < view().figure().joints().size(); ++i)
            if (view().figure().joints()[i].name == name)
                return static_cast<int>(i);
        return -1;
    }
    unsigned int nodeOf(const char* name) {
        return joint(name) < 0 ? 0 : view().figure().joints()[static_cast<std::size_t>(joint(name))].node;
    }
};

#define EXPECT_SEEN(place, color)                                                                            \
    EXPECT_TRUE(isLike(colorAt(place), color)) << colorAt(place).name().toStdString()

TEST_F(Space, ShowsAPictureTheRightWayRound) {
    openModel("board.gltf", testing::picturedBoard());
    trigger("viewFront");
    window().action("bones")->setChecked(false);
    waitForPicture();
    EXPECT_SEEN(QVector3D(-0.5F, 0.5F, 0), Qt::red);
    EXPECT_SEEN(QVector3D(0.5F, 0.5F, 0), Qt::green);
    EXPECT_SEEN(QVector3D(-0.5F, -0.5F, 0), Qt::blue);
    EXPECT_SEEN(QVector3D(0.5F, -0.5F, 0), Qt::yellow);
    picture("space-board");
    trigger("viewBack");
    waitForPicture();
    EXPECT_SEEN(QVector3D(-0.5F, 0.5F, 0), Qt::red);
}

TEST_F(Space, BendsASkinWithItsJointAndNotWithItsNode) {
    openModel("bound.gltf", testing::boundBoard());
    trigger("viewFront");
    window().action("bones")->setChecked(false);
    view().camera().frame(QVector3D(-12, -12, 0), QVector3D(12, 12, 0));
    window().head().scrub(window().transport().begin());
    waitForPicture();
    EXPECT_SEEN(QVector3D(0, 0, 0), Qt::green);
    EXPECT_FALSE(isLike(colorAt(QVector3D(10, 0, 0)), Qt::green));
    window().head().scrub(window().transport().end());
    waitForPicture();
    EXPECT_SEEN(QVector3D(10, 0, 0), Qt::green);
    EXPECT_FALSE(isLike(colorAt(QVector3D(0, 0, 0)), Qt::green));
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, pixelAt(QVector3D(10.6F, 0.6F, 0)));
    EXPECT_EQ(view().pickedNode(), nodeOf("hand")) << "a click on a skin picks the joint that moves it there";
}

TEST_F(Space, MorphsAMeshByItsWeight) {
    openModel("morphed.gltf", testing::morphedBoard());
    trigger("viewFront");
    window().action("bones")->setChecked(false);
    view().camera().frame(QVector3D(-12, -12, 0), QVector3D(12, 12, 0));
    window().head().scrub(window().transport().begin());
    waitForPicture();
    EXPECT_SEEN(QVector3D(0, 0, 0), Qt::blue);
    window().head().scrub(window().transport().end());
    waitForPicture();
    EXPECT_SEEN(QVector3D(0, 10, 0), Qt::blue);
    EXPECT_FALSE(isLike(colorAt(QVector3D(0, 0, 0)), Qt::blue));
}

TEST_F(Space, PicksTheNodeOfAMesh) {
    openModel("board.gltf", testing::picturedBoard());
    trigger("viewFront");
    waitForPicture();
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, pixelAt(QVector3D(0.7F, 0.7F, 0)));
    EXPECT_EQ(view().pickedNode(), nodeOf("board"));
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, pixelAt(QVector3D(1.4F, 1.2F, 0)));
    EXPECT_EQ(view().pickedNode(), 0U) << "beside it";
}

TEST_F(Space, LightsTheSceneWithItsOwnLights) {
    openModel("lit.gltf", testing::litBoard(true));
    trigger("viewFront");
    window().action("bones")->setChecked(false);
    waitForPicture();
    EXPECT_SEEN(QVector3D(0.7F, 0.7F, 0), Qt::white);
    picture("space-lit");
    openModel("unlit.gltf", testing::litBoard(false));
    waitForPicture();
    EXPECT_SEEN(QVector3D(0.7F, 0.7F, 0), QColor(Qt::black));
}

TEST_F(Space, LooksThroughACameraOfTheScene) {
    openModel("lit.gltf", testing::litBoard(true));
    ASSERT_EQ(view().sceneCameras().size(), 1U);
    EXPECT_EQ(view().sceneCameras()[0].name, "camera");
    trigger("nextCamera");
    waitForPicture();
    const double width = view().width(), height = view().height();
    const QPointF seen = view().viewpoint().project(QVector3D(2, 5, 0), view().size()).value_or(QPointF());
    EXPECT_NEAR(seen.x(), width / 2 + height / 10, 0.5) << "five tenths of the half height are five units";
    EXPECT_NEAR(seen.y(), height / 4, 0.5);
    EXPECT_SEEN(QVector3D(0.5F, 0.5F, 0), Qt::white);
    EXPECT_FALSE(isLike(colorAt(QVector3D(1.5F, 0.5F, 0)), Qt::black));
    picture("space-camera");
    drag(view(), QPoint(40, 40), QPoint(44, 40));
    EXPECT_EQ(view().seenThrough(), 0U) << "turning about leaves the camera";
    EXPECT_LT((view().viewpoint().eye() - QVector3D(0, 0, 10)).length(), 1.0F) << "from where it was";
    trigger("nextCamera");
    trigger("nextCamera");
    EXPECT_EQ(view().seenThrough(), 0U) << "after the last one";
}

TEST_F(Space, PicksLampsAndCamerasByTheirSigns) {
    openModel("lit.gltf", testing::litBoard(true));
    trigger("viewTop");
    window().action("bones")->setChecked(false);
    waitForPicture();
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, pixelAt(QVector3D(0, 0, 3)));
    EXPECT_EQ(view().pickedNode(), nodeOf("sun"));
    trigger("viewRight");
    view().camera().frame(QVector3D(-12, -12, -12), QVector3D(12, 12, 12));
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, pixelAt(QVector3D(0, 0, 10)));
    EXPECT_EQ(view().pickedNode(), nodeOf("camera"));
    picture("space-signs");
}

struct Model {
    const char* name;
    const char* path; ///< below the folder of the test models
};

class SpaceOf : public Space, public ::testing::WithParamInterface<Model> {
  protected:
    /// Of some of the triangles, wherever the deformer has them, how many have something before the sky at their middle.
    double coveredTriangles() {
        const SpaceScene& scene = view().meshes();
        const SpacePose pose = poseOf(scene, view().figure());
        const QImage seen = view().grab().toImage();
        int all = 0, covered = 0;
        std::size_t weight = 0;
        for (const SpacePart& part : scene.parts) {
            WorldCorners corners;
            deform(scene, part, pose, weight, corners);
            weight += part.morphs.size();
            const auto& indices = scene.meshes[static_cast<std::size_t>(part.mesh)].indices;
            for (std::size_t i = 0; i + 3 <= indices.size(); i += 3 * 5) {
                QVector3D middle;
                for (std::size_t j = i; j < i + 3; ++j) {
                    const float* at = &corners.positions[3 * indices[j]];
                    middle += QVector3D(at[0], at[1], at[2]) / 3;
                }
                const QPoint pixel = pixelAt(middle);
                if (!seen.rect().contains(pixel))
                    continue;
                const QColor here = seen.pixelColor(pixel), sky = seen.pixelColor(1, pixel.y());
                covered += std::abs(here.red() - sky.red()) + std::abs(here.green() - sky.green()) +
                                       std::abs(here.blue() - sky.blue()) >
                                   30
                               ? 1
                               : 0;
                ++all;
            }
        }
        EXPECT_GT(all, 10);
        return static_cast<double>(covered) / std::max(all, 1);
    }
};

TEST_P(SpaceOf, DrawsEveryMeshWhereItsTrianglesAre) {
    const QString path = QStringLiteral("/usr/share/assimp/models/") + QLatin1String(GetParam().path);
    if (!QFileInfo::exists(path))
        GTEST_SKIP() << "without " << path.toStdString();
    trigger("drawOpenGL");
    window().openPath(path);
    ASSERT_TRUE(
        QTest::qWaitFor([this] { return window().session().isOpen() || !_messages.isEmpty(); }, Patience));
    ASSERT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
    waitForPicture();
    picture(QStringLiteral("space-") + QLatin1String(GetParam().name));
    window().action("bones")->setChecked(false);
    const Transport& transport = window().transport();
    for (const float part : {0.0F, 0.4F, 0.9F}) {
        window().head().scrub(transport.begin() + part * (transport.end() - transport.begin()));
        trigger("sceneAll");
        waitForPicture();
        EXPECT_GT(coveredTriangles(), 0.95) << "at " << part << " of its time";
    }
}

INSTANTIATE_TEST_SUITE_P(Models, SpaceOf,
                         ::testing::Values(Model{"ox", "X/Testwuson.X"}, Model{"limb", "FBX/huesitos.fbx"},
                                           Model{"fixer", "IQM/mrfixit.iqm"},
                                           Model{"duck", "Collada/duck.dae"},
                                           Model{"spider", "FBX/spider.fbx"}),
                         [](const auto& model) { return std::string(model.param.name); });

TEST_F(Space, ShowsWayGhostsAndRingsOfAFigure) {
    trigger("drawOpenGL");
    trigger("sample");
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().session().isOpen(); }, Patience));
    window().action("ghosts")->setChecked(true);
    trigger("toolRotate");
    window().head().scrub(20.0F);
    view().pick(nodeOf("LeftForeArm"));
    ASSERT_NE(view().pickedNode(), 0U);
    QTest::qWait(200);
    waitForPicture();
    const QPoint joint = view().pixelOfJoint(this->joint("LeftForeArm")).toPoint();
    EXPECT_TRUE(isLike(view().grab().toImage().pixelColor(joint), Qt::yellow))
        << "the picked joint stands out";
    picture("studio-space");
}

TEST_F(Space, GoesOnWithoutOpenGLAndSaysSo) {
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    openModel("board.gltf", testing::picturedBoard(), false);
    ASSERT_TRUE(QTest::qWaitFor([this] { return view().space() == nullptr; }, Patience));
    EXPECT_FALSE(view().isDrawnByOpenGL());
    EXPECT_TRUE(view().isUpToDate());
    EXPECT_TRUE(view().note().contains("without OpenGL")) << view().note().toStdString();
    EXPECT_TRUE(view().note().contains("OpenGL 3.2")) << view().note().toStdString();
    picture("space-without");
    QTest::mouseClick(&view(), Qt::LeftButton, Qt::NoModifier, view().pixelOfJoint(joint("board")).toPoint());
    EXPECT_EQ(view().pickedNode(), nodeOf("board")) << "joints are there to be picked";
    // Another screen, another chance.
    qunsetenv("QT_XCB_GL_INTEGRATION");
    trigger("drawOpenGL");
    waitForPicture();
}

TEST_F(Space, OutlivesACrashOfTheDriver) {
    openModel("board.gltf", testing::picturedBoard());
    const qint64 first = view().space()->processId();
    ASSERT_GT(first, 0);
    const std::string before = Document::text();
    kill(static_cast<pid_t>(first), SIGSEGV);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const qint64 now = view().space() == nullptr ? 0 : view().space()->processId();
            return now > 0 && now != first && view().isDrawnByOpenGL() && view().isUpToDate();
        },
        Patience))
        << "it is started again";
    kill(static_cast<pid_t>(view().space()->processId()), SIGSEGV);
    ASSERT_TRUE(QTest::qWaitFor([this] { return view().space() == nullptr; }, Patience))
        << "but not for ever";
    EXPECT_TRUE(view().note().contains("crashed")) << view().note().toStdString();
    EXPECT_EQ(Document::text(), before);
    EXPECT_TRUE(_messages.isEmpty());
}

TEST_F(Space, StaysAliveBesideADriverThatHangs) {
    openModel("board.gltf", testing::picturedBoard());
    const auto process = static_cast<pid_t>(view().space()->processId());
    kill(process, SIGSTOP);
    trigger("viewTop");
    for (int i = 0; i < 20; ++i)
        view().grab(); // the last picture
    EXPECT_TRUE(view().isDrawnByOpenGL());
    EXPECT_FALSE(view().isUpToDate());
    kill(process, SIGCONT);
    waitForPicture();
}

TEST_F(Space, ChangesBetweenDrawingsAndScenes) {
    openModel("board.gltf", testing::picturedBoard());
    trigger("drawPlain");
    EXPECT_FALSE(view().isDrawnByOpenGL());
    view().grab();
    trigger("drawOpenGL");
    waitForPicture();
    window().resize(900, 600);
    waitForPicture();
    window().openPath(figureScene());
    ASSERT_EQ(view().meshes().parts.size(), 0U);
    waitForPicture();
    window().resize(1300, 850);
    waitForPicture();
}

} // namespace

} // namespace ka::studio
