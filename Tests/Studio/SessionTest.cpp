#include "WindowFixture.h"
#include "app/ShortcutDialog.h"
#include "document/ContainerEdits.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QKeySequenceEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QToolButton>
#include <csignal>
#include <fstream>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <sys/resource.h>

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

/// A capture of more keys than are read in a blink, as a scene and its document.
class LargeFiles : public Files {
  protected:
    QString largeScene() {
        std::string motion =
            "HIERARCHY\nROOT hip { OFFSET 0 0 0 CHANNELS 6 Xposition Yposition Zposition Zrotation "
            "Yrotation Xrotation End Site { OFFSET 0 1 0 } }\nMOTION\nFrames: 5000\nFrame Time: "
            "0.04\n";
        for (int i = 0; i < 5000; ++i)
            motion += std::to_string(i % 7) + " 0 0 " + std::to_string(i % 11) + " 0 0\n";
        ka::motion::ProjectFiles files;
        files.file = put("large.bvh", motion);
        const ka::motion::Project project(files);
        EXPECT_TRUE(
            ka::motion::save(project.root(), {folder() + "/large.osg", folder() + "/large.xml"}).empty());
        return QString::fromStdString(folder() + "/large.osg");
    }
};

TEST_F(LargeFiles, TakeNoInputWhileTheyOpenAndComeBackToWhatWasOpenWhenGivenUp) {
    const QString large = largeScene();
    openFigure();
    Document& document = window().session().document();
    const kaUID changed = key(curve("hip", "translationX"), 20.0F)->getId();
    setTangentType(document, {changed}, kaControlPoint2D::TANGENT_FLAT);
    const std::string before = Document::text();
    LongWork& work = window().session().work();
    work.setInterval(0); // on every machine there is time to give it up
    int calls = 0;
    QObject::connect(&work, &LongWork::progressed, &window(), [&](const QString& what) {
        if (what != "reading animation" || ++calls != 2)
            return;
        EXPECT_FALSE(window().session().isOpen()) << "nothing is half open";
        QTest::keyClick(&window(), Qt::Key_Delete); // nobody hears it
        QTest::mouseClick(&window().curveEditor(), Qt::LeftButton, Qt::NoModifier, QPoint(200, 100));
        QTest::mouseClick(window().findChild<QToolButton*>("giveUp"), Qt::LeftButton);
    });
    window().openPath(large);
    ASSERT_EQ(calls, 2);
    work.setInterval(30);
    EXPECT_TRUE(work.isGivenUp());
    EXPECT_TRUE(_messages.isEmpty());
    EXPECT_EQ(window().windowTitle(), "scene.osg[*] - ka-studio");
    EXPECT_TRUE(window().isWindowModified());
    EXPECT_EQ(Document::text(), before);
    // The history is there as well, and its steps work.
    ASSERT_EQ(document.history().index(), 1);
    document.history().undo();
    EXPECT_NE(kaAnimationManager::the()->getPoint2D(changed)->getTangentType(),
              kaControlPoint2D::TANGENT_FLAT);
    document.history().redo();
    EXPECT_EQ(Document::text(), before);
    QObject::disconnect(&work, &LongWork::progressed, &window(), nullptr);
    window().openPath(large);
    EXPECT_EQ(window().windowTitle(), "large.osg[*] - ka-studio");
    EXPECT_GT(kaAnimationManager::the()->getObjectCount(), 10000U);
}

TEST_F(LargeFiles, StayAsTheyWereWhenSavingIsGivenUp) {
    const QString large = largeScene();
    window().openPath(large);
    Document& document = window().session().document();
    rename(document, kaAnimationManager::the()->getObjects(KA_TYPE_STRIP).front()->getId(), "another");
    const std::string before = contentOf(folder() + "/large.xml");
    window().session().work().setInterval(0);
    QObject::connect(&window().session().work(), &LongWork::progressed, &window(),
                     [this] { QTest::keyClick(&window(), Qt::Key_Escape); });
    EXPECT_FALSE(window().save());
    EXPECT_EQ(contentOf(folder() + "/large.xml"), before);
    EXPECT_TRUE(window().isWindowModified());
    window().session().work().setInterval(30);
    QObject::disconnect(&window().session().work(), &LongWork::progressed, &window(), nullptr);
    EXPECT_TRUE(window().save());
    EXPECT_NE(contentOf(folder() + "/large.xml"), before);
    EXPECT_FALSE(window().isWindowModified());
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

TEST_F(Files, LoseNothingWhereTheyCannotBeWritten) {
    openFigure();
    const std::string before = Document::text();
    _saveName = "/dev/full/scene.osg";
    trigger("saveAs");
    ASSERT_EQ(_messages.size(), 1);
    EXPECT_EQ(Document::text(), before);
    EXPECT_EQ(window().windowTitle(), "scene.osg[*] - ka-studio");
}

/// For a while no file may grow beyond some bytes, as on a disk that is full.
class FullDisk {
  public:
    explicit FullDisk(rlim_t room) {
        _formerAction = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &_former);
        const rlimit limit{room, _former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &_former);
        std::signal(SIGXFSZ, _formerAction);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit _former{};
    void (*_formerAction)(int) = nullptr;
};

TEST_F(Files, StayWholeOnAFullDiskAndCanBeSavedOnceThereIsRoom) {
    openFigure();
    const std::string scene = figureScene().toStdString(),
                      document = scene.substr(0, scene.size() - 3) + "xml";
    const std::string sceneBefore = contentOf(scene), documentBefore = contentOf(document);
    setTangentType(window().session().document(), {key(curve("hip", "translationX"), 20.0F)->getId()},
                   kaControlPoint2D::TANGENT_FLAT);
    {
        const FullDisk full(3000); // room for the scene, not for its document
        EXPECT_FALSE(window().save());
    }
    ASSERT_EQ(_messages.size(), 1);
    EXPECT_TRUE(_messages.front().contains("make room")) << _messages.front().toStdString();
    EXPECT_EQ(contentOf(scene), sceneBefore);
    EXPECT_EQ(contentOf(document), documentBefore);
    EXPECT_TRUE(window().isWindowModified());
    EXPECT_TRUE(window().save());
    EXPECT_EQ(contentOf(document), Document::text());
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

TEST_F(Files, AreReachedFromTheFirstPage) {
    auto* page = window().findChild<QWidget*>("welcome");
    ASSERT_TRUE(page->isVisible());
    EXPECT_FALSE(window().curveEditor().isVisible());
    QTest::mouseClick(page->findChild<QPushButton*>("welcomeSample"), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().session().isOpen(); }, 30000));
    EXPECT_FALSE(page->isVisible());
    EXPECT_TRUE(window().curveEditor().isVisible());
    EXPECT_TRUE(window().session().files().shownName().startsWith("walk"));
}

TEST_F(Files, HaveShortcutsThatCanBeSearchedChangedAndSetBack) {
    QAction* play = window().action("play");
    const auto dialog = [this] {
        trigger("shortcuts");
        return window().findChild<ShortcutDialog*>();
    };
    std::unique_ptr<ShortcutDialog> shown(dialog());
    ASSERT_NE(shown, nullptr);
    const auto press = [&shown](const char* action, Qt::Key key) {
        QKeySequenceEdit& edit = shown->editOf(action);
        edit.setFocus();
        QTest::keyClick(&edit, key);
        emit edit.editingFinished(); // else a second later
    };
    press("play", Qt::Key_F9);
    EXPECT_EQ(play->shortcut(), QKeySequence(Qt::Key_F9));
    press("loop", Qt::Key_F9);
    EXPECT_EQ(window().action("loop")->shortcut(), QKeySequence(Qt::Key_L)) << "another action has it";
    picture(*shown, "studio-shortcuts");
    // It holds for the next window.
    EXPECT_EQ(ShortcutDialog::keysOf("play", Qt::Key_Space), QKeySequence(Qt::Key_F9));
    shown->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::RestoreDefaults)->click();
    EXPECT_EQ(play->shortcut(), QKeySequence(Qt::Key_Space));
    EXPECT_EQ(shown->editOf("play").keySequence(), QKeySequence(Qt::Key_Space));
}

TEST_F(Files, HaveEveryActionInAMenuWithATooltipAndAShortcutOfItsOwn) {
    openFigure();
    std::map<QString, QString> users; // of shortcuts
    for (const QAction* action : window().findChildren<QAction*>())
        if (action->property(ShortcutDialog::OwnKeys).isValid()) {
            const std::string name = action->objectName().toStdString();
            EXPECT_FALSE(action->toolTip().isEmpty()) << name;
            EXPECT_FALSE(action->associatedWidgets().isEmpty()) << name;
            EXPECT_FALSE(action->shortcut().isEmpty()) << name;
            const auto [user, isNew] = users.emplace(action->shortcut().toString(), action->objectName());
            EXPECT_TRUE(isNew) << name << " and " << user->second.toStdString();
        }
    EXPECT_GT(users.size(), 60U);
}

} // namespace

} // namespace ka::studio
