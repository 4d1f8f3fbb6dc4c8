#include "RegistryDump.h"
#include "WindowFixture.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"
#include "views/SceneView.h"

#include <QAction>
#include <QApplication>
#include <QWheelEvent>
#include <cstdlib>
#include <kaAnimationManager.h>
#include <kaMotion/CurveCheck.h>
#include <kaMotion/DocumentReader.h>
#include <kaMotion/ReferenceCheck.h>
#include <random>

namespace ka::studio {

namespace {

/// Throws presses, moves, wheels, keys and actions at the views, whatever they hit.
class Monkey : public testing::WindowFixture {
  protected:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(_random); }
    QPoint placeIn(const QWidget& view) {
        return {below(std::max(view.width(), 1)), below(std::max(view.height(), 1))};
    }

    void mouse(QEvent::Type type, QWidget& view) {
        const Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::LeftButton, Qt::MiddleButton};
        const Qt::KeyboardModifier held[] = {Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier,
                                             Qt::ControlModifier, Qt::AltModifier};
        const Qt::MouseButton button = buttons[below(3)];
        const QPoint at = placeIn(view);
        QMouseEvent event(type, at, view.mapToGlobal(at), button, button, held[below(5)]);
        QApplication::sendEvent(&view, &event);
    }

    void act() {
        static const char* const actions[] = {
            "undo",       "redo",       "cut",           "copy",           "paste",      "duplicate",
            "delete",     "selectAll",  "insertKey",     "typeFlat",       "typeSmooth", "typeUser",
            "flatten",    "unify",      "frameAll",      "frameSelection", "normalised", "scaling",
            "newClip",    "newTrack",   "newMarker",     "placeBlock",     "flip",       "duplicateBar",
            "deleteBar",  "flagActive", "flagRepeating", "setRange",       "toolMove",   "toolRotate",
            "toolSelect", "bones",      "viewTop",       "nextCamera",     "sceneAll",   "sceneSelection",
            "ghosts",     "trail",      "play",          "stop",           "nextKey",    "seconds"};
        const bool large = kaAnimationManager::the()->getObjectCount() > 3000;
        const int which = below(static_cast<int>(std::size(actions)));
        const std::string name = actions[which];
        if (large &&
            (name == "paste" || name == "duplicate" || name == "duplicateBar" || name == "placeBlock"))
            return;
        window().action(QString::fromStdString(name))->trigger();
    }

    void event() {
        QWidget* views[] = {&window().curveEditor(), &window().timeline(), &window().dopeSheet(),
                            &window().sceneView()};
        QWidget& view = *views[below(4)];
        switch (below(8)) {
        case 0:
            mouse(QEvent::MouseButtonPress, view);
            break;
        case 1:
            mouse(QEvent::MouseButtonRelease, view);
            break;
        case 2: {
            const QPoint at = placeIn(view);
            QWheelEvent wheel(at, view.mapToGlobal(at), QPoint(), QPoint(0, below(2) == 0 ? 120 : -120),
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&view, &wheel);
            break;
        }
        case 3:
            mouse(QEvent::MouseButtonDblClick, view);
            break;
        case 4:
            act();
            break;
        case 5:
            QTest::keyClick(&view, below(3) == 0 ? Qt::Key_Escape : Qt::Key_Up);
            break;
        default:
            mouse(QEvent::MouseMove, view);
            break;
        }
    }

    /// What it would save is a document without anything wrong in it.
    void expectValid(int events) {
        const std::string file = put("monkey.xml", Document::text());
        ka::motion::DocumentOutline outline;
        ka::motion::FindingList findings;
        ka::motion::readOutline(file, outline, findings);
        const ka::motion::ElementsById byId(outline);
        checkReferences(outline, byId, findings);
        checkCurves(outline, byId, findings);
        EXPECT_FALSE(outline.elements.empty());
        for (const ka::motion::Finding& finding : findings)
            ADD_FAILURE() << "after " << events << " events: " << finding.element << ' ' << finding.id << ": "
                          << finding.message;
    }

    std::mt19937 _random;
};

TEST_F(Monkey, LeavesADocumentThatIsValid) {
    const char* wish = std::getenv("KA_STUDIO_EVENTS");
    const char* seedWish = std::getenv("KA_STUDIO_SEED");
    const int events = wish != nullptr ? std::atoi(wish) : 2000;
    const unsigned int seed = seedWish != nullptr ? static_cast<unsigned int>(std::atoi(seedWish)) : 3;
    RecordProperty("seed", static_cast<int>(seed));
    SCOPED_TRACE("KA_STUDIO_SEED=" + std::to_string(seed));
    _random.seed(seed);
    openFigure();
    const std::string before = testing::registryDump();
    int most = 0; // steps that stood in the history at once
    for (int i = 1; i <= events; ++i) {
        event();
        most = std::max(most, window().session().document().history().index());
        if (i % 50 == 0)
            QCoreApplication::processEvents(); // let it draw
        if (i % 1000 != 0)
            continue;
        ASSERT_TRUE(window().session().isOpen());
        expectValid(i);
    }
    window().transport().stop();
    EXPECT_GT(most, 5) << "it did nothing much";
    RecordProperty("steps", most);
    // All of it can be taken back.
    while (window().session().document().history().canUndo())
        window().session().document().history().undo();
    EXPECT_TRUE(testing::registryDump() == before) << "not all of it came back";
    EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
}

} // namespace

} // namespace ka::studio
