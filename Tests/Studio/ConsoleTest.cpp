#include "RegistryDump.h"
#include "WindowFixture.h"
#include "console/ConsoleInput.h"
#include "console/ConsolePanel.h"
#include "console/PythonEngine.h"
#include "console/ScriptMenu.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QToolButton>
#include <chrono>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <thread>

namespace ka::studio {

namespace {

class PythonConsole : public testing::WindowFixture {
  protected:
    void SetUp() override {
        WindowFixture::SetUp();
        QString fault;
        if (PythonEngine::load(fault) == nullptr)
            GTEST_SKIP() << fault.toStdString();
    }

    /// Runs a command and gives what it printed, without its echo.
    std::string run(const char* source) {
        const QString before = console().printed();
        _isDone = console().run(QString::fromUtf8(source));
        QStringList lines = console().printed().mid(before.size()).split(QLatin1Char('\n'));
        while (!lines.isEmpty() &&
               (lines.first().startsWith(QLatin1String(">>> ")) ||
                lines.first().startsWith(QLatin1String("... ")) || lines.first().isEmpty() ||
                lines.first().startsWith(QLatin1String("Python: "))))
            lines.removeFirst();
        return lines.join(QLatin1Char('\n')).trimmed().toStdString();
    }
    ConsolePanel& console() { return window().console(); }
    QUndoStack& history() { return window().session().document().history(); }
    /// The scene's nodes with where they stand.
    std::string scene() {
        std::string text;
        for (const osg::NodePtr& node : ka::motion::nodesBelow(window().session().project().root())) {
            text += ka::motion::nodePath(node);
            const auto pose = ka::motion::readPose({node});
            for (const float number : pose.front().position)
                text += " " + std::to_string(number);
            text += "\n";
        }
        return text;
    }
    /// What undo and redo make of the last step must be what was before and after it.
    void expectOneStep(int stepsBefore, const std::string& registry, const std::string& nodes) {
        ASSERT_EQ(history().index(), stepsBefore + 1);
        const std::string after = testing::registryDump(), nodesAfter = scene();
        history().undo();
        EXPECT_EQ(testing::registryDump(), registry);
        EXPECT_EQ(scene(), nodes);
        history().redo();
        EXPECT_EQ(testing::registryDump(), after);
        EXPECT_EQ(scene(), nodesAfter);
    }
    static QString putScript(const QString& name, const QByteArray& text) {
        const QString path = ScriptMenu::folder() + QLatin1Char('/') + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }

    bool _isDone = false;
};

TEST_F(PythonConsole, SaysWhatACommandGivesAndHasTheOpenProjectAtHand) {
    EXPECT_EQ(run("1 + 1"), "2");
    EXPECT_EQ(run("print(project)"), "None") << "nothing is open yet";
    openFigure();
    EXPECT_EQ(run("len(project.clips), project.frame_range"), "(1, (0.0, 100.0))");
    EXPECT_EQ(run("_[0]"), "1");
    EXPECT_EQ(run("kaanimation.current() is project"), "True");
    EXPECT_EQ(run("import math; x = math.pi"), "");
    EXPECT_EQ(run("round(x, 3)"), "3.142");
    EXPECT_TRUE(_isDone);
    EXPECT_EQ(history().count(), 0) << "looking is no step";
}

TEST_F(PythonConsole, ComesUpAndGoesByItsMenuEntry) {
    auto* dock = window().findChild<QDockWidget*>("pythonDock");
    EXPECT_FALSE(dock->isVisible());
    EXPECT_EQ(console().printed(), "") << "Python is not loaded before anybody asks";
    openFigure();
    trigger("python");
    EXPECT_TRUE(dock->isVisible());
    EXPECT_TRUE(console().printed().startsWith("Python: project is what is open"));
    run("for curve in project.curves:\n    print(curve.label, len(curve), curve.unit)\n");
    run("project.clips[0].reduce(rotation=1, translation=0.5)");
    run("project.scene.find('leg')");
    picture("python");
    trigger("python");
    EXPECT_FALSE(dock->isVisible());
}

TEST_F(PythonConsole, MakesOneStepOfWhateverACommandChanges) {
    openFigure();
    const char* commands[] = {
        "for curve in project.curves:\n    for key in curve.keys:\n        key.value += 1\n",
        "project.curves[0].set_keys([[0, 1], [50, 2], [90, 0]])",
        "project.clips[0].reduce(translation=1, rotation=5); project.clips[0].name = 'thin'",
        "project.clips[0].destroy()",
        "door = project.scene.find('arm').add_child('door'); "
        "c = project.create_curve(door, 'rotationY'); c.add_key(0, 1); c.add_key(9, 45); "
        "b = project.create_block('swing', [c])",
        "project.rename_nodes('h*', 'the_*')",
        "project.scene.find('arm').field('scaleX').value = 3",
        "project.copy_clip(project.clips[0], 'again').move(200)",
        "project.scene.find('arm').destroy()",
    };
    for (const char* command : commands) {
        const std::string registry = testing::registryDump(), nodes = scene();
        const int steps = history().index();
        EXPECT_EQ(run(command).find("Error"), std::string::npos)
            << command << console().printed().toStdString();
        SCOPED_TRACE(command);
        expectOneStep(steps, registry, nodes);
        history().undo(); // the next one begins with the figure as it was opened
        EXPECT_EQ(testing::registryDump(), registry);
    }
    EXPECT_TRUE(history().undoText().isEmpty());
    EXPECT_TRUE(history().redoText().startsWith("Python: project.scene.find('arm').destroy()"));
}

TEST_F(PythonConsole, TellsTheViewsWhatHasChanged) {
    openFigure();
    const kaUID moved = curve("hip", "translationX");
    const std::size_t keys = window().curveEditor().scene().trace(moved).frames().size();
    run("next(c for c in project.curves if c.label == 'hip.translationX').add_key(55, 9)");
    EXPECT_EQ(window().curveEditor().scene().trace(moved).frames().size(), keys + 1);
    EXPECT_TRUE(window().isWindowModified());
    history().undo();
    EXPECT_EQ(window().curveEditor().scene().trace(moved).frames().size(), keys);
}

TEST_F(PythonConsole, ShowsExceptionsWithTheirTracebackAndKeepsWhatWasDoneBefore) {
    openFigure();
    const std::string registry = testing::registryDump(), nodes = scene();
    const std::string told = run("project.curves[0].name = 'bent'; project.scene.find('nobody')");
    EXPECT_FALSE(_isDone);
    EXPECT_NE(told.find("Traceback"), std::string::npos) << told;
    EXPECT_NE(told.find("project.scene.find('nobody')"), std::string::npos) << "the line is shown\n" << told;
    EXPECT_NE(told.find("UsageError"), std::string::npos) << told;
    EXPECT_EQ(told.find("<console>"), std::string::npos) << "what is the console's own\n" << told;
    expectOneStep(0, registry, nodes);
    EXPECT_NE(run("1 +* 2").find("SyntaxError"), std::string::npos);
    EXPECT_NE(run("raise SystemExit(3)").find("SystemExit: 3"), std::string::npos) << "the studio goes on";
    EXPECT_NE(run("input()").find("RuntimeError"), std::string::npos) << "there is nobody to ask";
}

TEST_F(PythonConsole, StopsACommandThatTakesTooLong) {
    openFigure();
    trigger("python");
    const std::string registry = testing::registryDump(), nodes = scene();
    auto* stop = window().findChild<QToolButton*>("pythonStop");
    ASSERT_NE(stop, nullptr);
    EXPECT_FALSE(stop->isEnabled());
    bool wasEnabled = false, mayClose = true;
    std::thread user([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
        QMetaObject::invokeMethod(stop, [&] {
            wasEnabled = stop->isEnabled();
            mayClose = window().close(); // nobody comes between
            QTest::mouseClick(stop, Qt::LeftButton);
        });
    });
    const std::string told = run("project.curves[0].name = 'first'\nwhile True:\n    pass\n");
    user.join();
    EXPECT_NE(told.find("KeyboardInterrupt"), std::string::npos) << told;
    EXPECT_TRUE(wasEnabled);
    EXPECT_FALSE(mayClose);
    EXPECT_FALSE(stop->isEnabled());
    expectOneStep(0, registry, nodes);
    EXPECT_EQ(run("'alive'"), "'alive'");
}

TEST_F(PythonConsole, LeavesPlayingAndClosingToTheStudio) {
    openFigure();
    EXPECT_NE(run("project.close()").find("RefusedError"), std::string::npos);
    EXPECT_NE(run("project.player").find("RefusedError"), std::string::npos);
    EXPECT_NE(run("project.host").find("RefusedError"), std::string::npos);
    EXPECT_NE(run("kaanimation.open(kaanimation.example())").find("OpenError"), std::string::npos);
    EXPECT_EQ(run("studio.frame = 40"), "");
    EXPECT_FLOAT_EQ(window().transport().begin(), 0.0F);
    EXPECT_EQ(run("studio.frame, studio.playing"), "(40.0, False)");
    run("studio.play()");
    EXPECT_TRUE(window().transport().isPlaying());
    EXPECT_EQ(run("project.clips[0].name"), "'figure'") << "while it plays";
    run("studio.pause()");
    EXPECT_FALSE(window().transport().isPlaying());
}

TEST_F(PythonConsole, SeesAndSetsTheSelection) {
    openFigure();
    run("c = project.curves[0]; studio.keys = c.keys[2:4]");
    EXPECT_EQ(window().keySelection().size(), 2U);
    EXPECT_EQ(run("sorted(key.frame for key in studio.keys) == [key.frame for key in c.keys[2:4]]"), "True");
    EXPECT_EQ(run("len(studio.curves) > 0"), "True");
    run("studio.objects = project.clips[0].blocks");
    EXPECT_EQ(run("studio.objects == sorted(project.clips[0].blocks, key=lambda b: b.id)"), "True");
}

TEST_F(PythonConsole, GoesOverToWhatIsOpenedNext) {
    openFigure();
    run("old, clip = project, project.clips[0]");
    openFigure();
    EXPECT_EQ(run("old is project, old.is_open, project.is_open"), "(False, False, True)");
    EXPECT_NE(run("clip.name").find("ClosedError"), std::string::npos);
    EXPECT_EQ(run("project.clips[0].name"), "'figure'");
}

TEST_F(PythonConsole, WaitsForTheEndOfABlock) {
    auto* input = window().findChild<ConsoleInput*>("pythonInput");
    EXPECT_EQ(run("for i in range(2):"), "");
    EXPECT_EQ(input->toPlainText(), "for i in range(2):\n");
    QTest::keyClicks(input, "    print(i)");
    QTest::keyClick(input, Qt::Key_Return);
    EXPECT_EQ(input->toPlainText(), "for i in range(2):\n    print(i)\n") << "there may be more of it";
    QTest::keyClick(input, Qt::Key_Return);
    EXPECT_TRUE(console().printed().endsWith("0\n1\n"));
    EXPECT_EQ(input->toPlainText(), "");
    QTest::keyClick(input, Qt::Key_Up);
    EXPECT_TRUE(input->toPlainText().startsWith("for i in range(2):"));
}

TEST_F(PythonConsole, CompletesNames) {
    openFigure();
    run("project");
    auto* input = window().findChild<ConsoleInput*>("pythonInput");
    QTest::keyClicks(input, "len(project.object_c");
    QTest::keyClick(input, Qt::Key_Tab);
    EXPECT_EQ(input->toPlainText(), "len(project.object_count");
    input->setPlainText("nothing.like.it");
    input->moveCursor(QTextCursor::End);
    QTest::keyClick(input, Qt::Key_Tab);
    EXPECT_EQ(input->toPlainText(), "nothing.like.it");
}

TEST_F(PythonConsole, RunsScriptsFromTheMenu) {
    QDir(ScriptMenu::folder()).removeRecursively();
    putScript("double_values.py", "# made by hand\n\"\"\"Doubles every value.\n\nMore.\"\"\"\n"
                                  "for clip in project.clips:\n    clip.change_values(2)\n"
                                  "print(__name__, __file__.endswith('double_values.py'))\n");
    putScript("more/fails.py", "project.clips[0].name = 'half'\n1 / 0\n");
    putScript("_hidden.py", "");
    QMenu* menu = nullptr;
    for (QAction* action : window().menuBar()->actions())
        if (action->text() == "Scr&ipts")
            menu = action->menu();
    ASSERT_NE(menu, nullptr);
    emit menu->aboutToShow();
    auto* doubles = menu->findChild<QAction*>("script:double_values.py");
    auto* fails = menu->findChild<QAction*>("script:more/fails.py");
    ASSERT_NE(doubles, nullptr);
    ASSERT_NE(fails, nullptr);
    EXPECT_EQ(menu->findChild<QAction*>("script:_hidden.py"), nullptr);
    EXPECT_EQ(doubles->text(), "double values");
    EXPECT_EQ(doubles->toolTip(), "Doubles every value.");

    openFigure();
    const std::string registry = testing::registryDump(), nodes = scene();
    const float before = key(curve("arm", "rotationZ"), 30)->getPosition()[1];
    doubles->trigger();
    EXPECT_TRUE(console().printed().endsWith("__main__ True\n")) << console().printed().toStdString();
    EXPECT_FLOAT_EQ(key(curve("arm", "rotationZ"), 30)->getPosition()[1], 2 * before);
    EXPECT_EQ(history().undoText(), "Script: double_values");
    expectOneStep(0, registry, nodes);
    EXPECT_TRUE(window().findChild<QDockWidget*>("pythonDock")->isVisible()) << "what it prints is seen";

    fails->trigger();
    const std::string told = console().printed().toStdString();
    EXPECT_NE(told.find("fails.py\", line 2"), std::string::npos) << told;
    EXPECT_NE(told.find("ZeroDivisionError"), std::string::npos) << told;
    EXPECT_EQ(history().count(), 2) << "what it had done by then can be undone";
    QDir(ScriptMenu::folder()).removeRecursively();
}

TEST_F(PythonConsole, EndsWithTheProgramWhateverScriptsHaveLeft) {
    const QString scene = figureScene();
    const std::string told = folder() + "/told.txt";
    const std::string script =
        put("leaves.py", "import atexit, kaanimation\n"
                         "clip = project.clips[0]\n"
                         "keep = kaanimation.listen('', lambda *_: None)\n"
                         "project.connect(clip, 0, lambda held=project: None)\n"
                         "kaanimation.kept = [clip, keep, studio]\n"
                         "atexit.register(lambda: open(r'" +
                             told +
                             "', 'a').write(f' then {clip.is_alive}'))\n"
                             "open(r'" +
                             told + "', 'w').write(f'{clip.name} {project.frame_range[1]}')\n");
    QProcess studio;
    studio.start(QStringLiteral(KA_STUDIO_PROGRAM),
                 {QStringLiteral("--quit-after"), QStringLiteral("0.5"), QStringLiteral("--script"),
                  QString::fromStdString(script), scene});
    ASSERT_TRUE(studio.waitForFinished(30000));
    EXPECT_EQ(studio.exitStatus(), QProcess::NormalExit) << studio.readAllStandardError().toStdString();
    EXPECT_EQ(studio.exitCode(), 0);
    EXPECT_EQ(ka_test::contentOf(told), "figure 100.0 then False") << "what is registered has gone before";
}

TEST_F(PythonConsole, SurvivesListenersThatOutliveTheirCommand) {
    openFigure();
    run("heard = []; l = kaanimation.listen('currentFrameChanged', lambda name, values: "
        "heard.append(values['frame']))");
    window().head().scrub(30);
    EXPECT_EQ(run("len(heard) > 0"), "True") << console().printed().toStdString();
    run("def fail(*_):\n    raise LookupError('in a listener')\n");
    run("l = kaanimation.listen('currentFrameChanged', fail)");
    window().head().scrub(50);
    EXPECT_TRUE(console().printed().contains("LookupError: in a listener"))
        << console().printed().toStdString();
    run("l.remove()");
}

} // namespace

} // namespace ka::studio
