#include "RandomEdits.h"
#include "WindowFixture.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <cstdlib>
#include <kaAnimationManager.h>
#include <random>

namespace ka::studio {

namespace {

class Recovering : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        for (const Recovery::Kept& kept : Recovery::leftBehind())
            Recovery::remove(kept);
    }
};

/// Another process of this program that edits and saves until it is killed.
class Victim : public testing::WindowFixture {};

TEST_F(Victim, EditsAndSavesUntilItIsKilled) {
    const QString scene = qEnvironmentVariable("KA_STUDIO_VICTIM");
    if (scene.isEmpty())
        GTEST_SKIP() << "only as another test's process";
    window().openPath(scene);
    window().recovery().setInterval(20);
    testing::RandomEdits edits(window().session().document(),
                               static_cast<unsigned int>(QCoreApplication::applicationPid()));
    for (int i = 0;; ++i) {
        edits.doOne();
        QTest::qWait(2);
        if (i % 20 == 19)
            window().save();
    }
}

TEST_F(Recovering, KeepsNothingOfARunThatEndedWell) {
    openFigure();
    window().recovery().setInterval(20);
    setTangentType(window().session().document(), {key(curve("hip", "translationX"), 20.0F)->getId()},
                   kaControlPoint2D::TANGENT_FLAT);
    const QDir kept(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/recovery");
    ASSERT_TRUE(QTest::qWaitFor(
        [&kept] { return !kept.entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty(); }, 5000));
    EXPECT_TRUE(window().close());
    EXPECT_TRUE(kept.entryList(QDir::Dirs | QDir::NoDotAndDotDot).isEmpty());
}

TEST_F(Recovering, OffersWhatAKilledRunHadAndTheSavedFileIsWhole) {
    const char* wish = std::getenv("KA_STUDIO_KILLS");
    const int kills = wish != nullptr ? std::atoi(wish) : 3;
    std::mt19937 random(7);
    int offered = 0;
    const QString scene = figureScene();
    for (int i = 0; i < kills; ++i) {
        QProcess victim;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("KA_STUDIO_VICTIM", scene);
        victim.setProcessEnvironment(environment);
        victim.setStandardOutputFile(QProcess::nullDevice());
        victim.start(QCoreApplication::applicationFilePath(), {"--gtest_filter=Victim.*"});
        ASSERT_TRUE(victim.waitForStarted());
        QTest::qWait(700 + static_cast<int>(random() % 900));
        ASSERT_EQ(victim.state(), QProcess::Running);
        victim.kill(); // SIGKILL
        victim.waitForFinished();
        _messages.clear();
        window().openPath(scene);
        EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
        EXPECT_TRUE(window().session().isOpen());
        const std::vector<Recovery::Kept> kept = Recovery::leftBehind();
        for (const Recovery::Kept& one : kept) {
            ++offered;
            EXPECT_EQ(one.source, scene);
            EXPECT_EQ(window().session().open({one.scene, one.animation, one.source}, true).toStdString(),
                      "");
            EXPECT_TRUE(window().session().isModified());
            EXPECT_GT(kaAnimationManager::the()->getObjectCount(), 0U);
            Recovery::remove(one);
        }
    }
    EXPECT_GT(offered, 0);
}

} // namespace

} // namespace ka::studio
