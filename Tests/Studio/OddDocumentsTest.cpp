#include "WindowFixture.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"
#include "views/Outliner.h"
#include "views/SceneView.h"

#include <QLineEdit>
#include <QTreeView>
#include <algorithm>
#include <filesystem>
#include <kaAnimationManager.h>
#include <kaMotion/ModelReader.h>

namespace ka::studio {

namespace {

std::vector<std::string> documentsIn(const char* folder) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(KA_DOCUMENTS) + folder))
        if (entry.path().extension() == ".xml")
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    return files;
}

/// Documents with every quirk that there are files of, and scenes larger than usual.
class OddDocuments : public testing::WindowFixture {};

TEST_F(OddDocuments, ThatCannotBeReadGiveOneMessageEachAndLeaveWhatIsOpen) {
    openFigure();
    const std::string before = Document::text();
    for (const std::string& file : documentsIn("/broken")) {
        _messages.clear();
        window().openPath(QString::fromStdString(file));
        ASSERT_EQ(_messages.size(), 1) << file;
        EXPECT_TRUE(_messages.front().contains(
            QString::fromStdString(std::filesystem::path(file).filename().string())))
            << _messages.front().toStdString();
        EXPECT_EQ(Document::text(), before) << file;
        EXPECT_EQ(window().session().files().shownName(), "scene.osg");
    }
}

TEST_F(OddDocuments, ThatCanBeReadAreShownChangedSavedAndReadAgain) {
    std::vector<std::string> files = documentsIn("/elements");
    const std::vector<std::string> more = documentsIn("");
    files.insert(files.end(), more.begin(), more.end());
    ASSERT_GE(files.size(), 8U);
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        _messages.clear();
        window().openPath(QString::fromStdString(file));
        ASSERT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
        for (const char* action :
             {"selectAll", "frameAll", "frameSelection", "normalised", "first", "last", "normalised"})
            trigger(action);
        window().outliner().view().expandAll();
        QCoreApplication::processEvents();
        window().grab();
        const std::string before = Document::text();
        for (const char* action :
             {"typeFlat", "insertKey", "newClip", "newTrack", "newMarker", "duplicate", "cut"})
            trigger(action);
        QUndoStack& history = window().session().document().history();
        while (history.canUndo())
            history.undo();
        EXPECT_EQ(Document::text(), before) << "undo left something";
        _saveName = QString::fromStdString(folder() + "/again.xml");
        trigger("saveAs");
        window().openPath(_saveName);
        EXPECT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
        EXPECT_TRUE(window().session().isOpen());
    }
}

TEST_F(OddDocuments, AModelOf20000NodesIsShownSearchedAndEdited) {
    ka::motion::ReadModel model;
    constexpr int Nodes = 20000, Branch = 400;
    ka::motion::MotionTake take;
    take.name = "many";
    for (int i = 0; i < Nodes; ++i) {
        ka::motion::MotionNode node;
        node.name = "node" + std::to_string(i);
        node.parent = i % Branch == 0 ? (i == 0 ? ka::motion::MotionNode::noParent : 0) : i - 1;
        node.translation = {i % Branch == 0 ? i / Branch * 10.0 : 0.0, 1.0, 0.0};
        model.motion.nodes.push_back(node);
        if (i % 10 != 0)
            continue;
        ka::motion::MotionTrack track;
        track.node = static_cast<std::uint32_t>(i);
        for (int k = 0; k < 3; ++k)
            track.angles.keys.push_back({k * 1.0, {k * 10.0, 0.0, 0.0}, {}, {}});
        take.tracks.push_back(track);
    }
    model.motion.takes.push_back(take);
    EXPECT_EQ(window().session().openModel(std::move(model), "/many.glb").toStdString(), "");
    EXPECT_EQ(kaAnimationManager::the()->getObjects(KA_TYPE_UNIT).size(),
              static_cast<std::size_t>(Nodes / 10));
    const OutlineModel& outline = window().outliner().model();
    EXPECT_TRUE(window().outliner().model().sceneGroup().isValid());
    EXPECT_GT(outline.rowCount(outline.sceneGroup()), 0);
    window().outliner().search().setText("node1999");
    EXPECT_EQ(window().outliner().view().model()->rowCount(), 2) << "nodes, and blocks of their names";
    window().outliner().search().clear();
    picture("many-nodes");
    window().head().scrub(10.0F);
    const kaUID bend = curve("node19990", "rotationX");
    const kaControlPoint2D* first = key(bend, 0);
    ASSERT_NE(first, nullptr);
    setTangentType(window().session().document(), {first->getId()}, kaControlPoint2D::TANGENT_FLAT);
    trigger("undo");
    window().grab();
    EXPECT_TRUE(_messages.isEmpty());
}

} // namespace

} // namespace ka::studio
