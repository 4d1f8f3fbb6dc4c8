#include "WindowFixture.h"
#include "document/ContainerEdits.h"

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <fstream>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

using ka_test::contentOf;

class Files : public testing::WindowFixture {};

TEST_F(Files, OpenASceneWithItsDocumentAndShowItsCurves) {
    openFigure();
    EXPECT_EQ(window().windowTitle(), "scene.osg[*] - ka-studio");
    EXPECT_FALSE(window().isWindowModified());
    EXPECT_FALSE(window().curveEditor().scene().curves().empty());
    EXPECT_FLOAT_EQ(window().transport().end(), 100.0F);
    picture("opened");
}

TEST_F(Files, ImportAModelInTheBackgroundAndAskWhereToSaveIt) {
    figureScene();
    window().openPath(QString::fromStdString(folder() + "/figure.bvh"));
    EXPECT_FALSE(window().session().isOpen()) << "the window waited for the import";
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().session().isOpen(); }, 20000));
    EXPECT_TRUE(window().windowTitle().startsWith("figure.bvh"));
    EXPECT_TRUE(window().isWindowModified()) << "no file holds it yet";
    _saveName = QString::fromStdString(folder() + "/kept.osg");
    EXPECT_TRUE(window().save());
    EXPECT_TRUE(std::filesystem::exists(folder() + "/kept.osg"));
    EXPECT_TRUE(std::filesystem::exists(folder() + "/kept.xml"));
    EXPECT_FALSE(window().isWindowModified());
}

TEST_F(Files, GiveAnImportUpAndKeepWhatIsOpen) {
    openFigure();
    window().openPath("/usr/share/assimp/models/BVH/01_01.bvh");
    ASSERT_TRUE(window().importer().isRunning());
    window().importer().cancel();
    EXPECT_FALSE(window().importer().isRunning());
    EXPECT_TRUE(_messages.isEmpty());
    EXPECT_EQ(window().windowTitle(), "scene.osg[*] - ka-studio");
}

TEST_F(Files, KeepWhatIsOpenWhenAnotherCannotBe) {
    openFigure();
    const std::string before = Document::text();
    const char* broken[] = {"broken.xml", "broken.osg", "broken.bvh"};
    for (const char* name : broken) {
        _messages.clear();
        window().openPath(QString::fromStdString(put(name, "<AnimationPool><no end")));
        ASSERT_TRUE(QTest::qWaitFor([this] { return !_messages.isEmpty(); }, 20000)) << name;
        EXPECT_EQ(_messages.size(), 1);
        EXPECT_TRUE(_messages.front().contains(name)) << _messages.front().toStdString();
        EXPECT_EQ(Document::text(), before) << name;
    }
    _messages.clear();
    window().openPath(QString::fromStdString(folder() + "/none.osg"));
    EXPECT_EQ(_messages.size(), 1);
    EXPECT_TRUE(window().session().isOpen());
}

TEST_F(Files, AskBeforeChangesGo) {
    openFigure();
    setTangentType(window().session().document(), {key(curve("hip", "translationX"), 20.0F)->getId()},
                   kaControlPoint2D::TANGENT_FLAT);
    EXPECT_TRUE(window().isWindowModified());
    _unsaved = QMessageBox::Cancel;
    EXPECT_FALSE(window().close());
    EXPECT_TRUE(window().isVisible());
    const std::string path = figureScene().toStdString();
    const std::string document = path.substr(0, path.size() - 3) + "xml";
    const std::string before = contentOf(document);
    _unsaved = QMessageBox::Save;
    EXPECT_TRUE(window().close());
    EXPECT_NE(contentOf(document), before);
    EXPECT_EQ(contentOf(document), Document::text());
}

TEST_F(Files, TellWhenAFileHasChangedMeanwhile) {
    openFigure();
    const std::string path = figureScene().toStdString();
    const std::string document = path.substr(0, path.size() - 3) + "xml";
    std::ofstream(document, std::ios::app) << "\n";
    setTangentType(window().session().document(), {key(curve("hip", "translationX"), 20.0F)->getId()},
                   kaControlPoint2D::TANGENT_FLAT);
    const std::string others = contentOf(document);
    EXPECT_FALSE(window().save());
    EXPECT_EQ(contentOf(document), others);
    _overwrite = true;
    EXPECT_TRUE(window().save());
    EXPECT_EQ(contentOf(document), Document::text());
}

TEST_F(Files, LoseNothingOnAFullDisk) {
    openFigure();
    const std::string before = Document::text();
    _saveName = "/dev/full/scene.osg";
    trigger("saveAs");
    ASSERT_EQ(_messages.size(), 1);
    EXPECT_EQ(Document::text(), before);
    EXPECT_EQ(window().windowTitle(), "scene.osg[*] - ka-studio");
}

TEST_F(Files, AreTakenFromADrop) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(figureScene())});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &drop);
    EXPECT_TRUE(window().session().isOpen());
    EXPECT_EQ(QSettings().value("recentFiles").toStringList(), QStringList{figureScene()});
}

TEST_F(Files, HaveEveryActionInAMenuWithATooltip) {
    openFigure();
    int count = 0;
    for (const QAction* action : window().findChildren<QAction*>())
        if (action->property("ownKeys").isValid()) {
            ++count;
            EXPECT_FALSE(action->toolTip().isEmpty()) << action->objectName().toStdString();
            EXPECT_FALSE(action->associatedWidgets().isEmpty()) << action->objectName().toStdString();
        }
    EXPECT_GT(count, 30);
}

} // namespace

} // namespace ka::studio
