// A viewer: a scene and its document are opened, the user picks a clip and drags a slider, and after each
// move the host draws anew what has changed. Run as: howto_scrub_and_redraw scene.osg document.xml
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGThread.h>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationScene.h>
#include <kaAnimationStrip.h>

namespace {

/// Names are bytes, which the module and its documents take as Latin-1. A host that has UTF-8 converts both
/// ways, and asks before it loses characters that Latin-1 has not.
QString shown(const std::string& name) {
    return QString::fromLatin1(name.data(), static_cast<int>(name.size()));
}

bool rename(kaAnimationObject& object, const QString& name) {
    const QByteArray bytes = name.toLatin1();
    if (QString::fromLatin1(bytes) != name)
        return false;
    object.setName(bytes.toStdString());
    return true;
}

/// What the host's slider does. A clip is held at its first and last frame outside its range: a slider that
/// goes further shows the ends.
kaAnimationScene::Redraw scrub(const kaAnimationObject& clip, float frame) {
    kaAnimationController& controller = *kaAnimationController::the();
    controller.setObjectID(clip.getId()); // what evaluate() evaluates; 0 for nothing
    controller.setCurrentFrame(frame, kaAnimationController::WidgetHost);
    controller.evaluate(frame, false);
    const kaAnimationScene::Redraw redraw = kaAnimationScene::redraw();
    osg::PThreadBase::getCurrentChangeList()->clearAll(); // drawn
    return redraw;
}

} // namespace

int main(int argc, char** argv) {
    require(argc == 3, "a scene and its document are named");
    osg::ChangeList::setReadWriteDefault(true); // before the scene graph starts, or nothing is recorded
    osg::osgInit(argc, argv);
    kaAnimationManager::the()->init(nullptr);
    {
        kaAnimationScene scene;
        const auto opening = scene.open(argv[1], argv[2]);
        if (opening == kaAnimationScene::Opening::DocumentRefused)
            require(false, kaAnimationManager::getLoadFault().message.c_str());
        require(opening == kaAnimationScene::Opening::Opened, "the scene is there");

        // Several clips: the user picks one. They are often takes of the same nodes, of which the one that is
        // evaluated last wins.
        const std::vector<kaAnimationStrip*> clips = kaAnimationScene::clips();
        QStringList list;
        for (const kaAnimationStrip* clip : clips)
            list << shown(clip->getName());
        require(!clips.empty() && list.size() == static_cast<int>(clips.size()),
                "there is something to pick");
        kaAnimationStrip& clip = *clips.front();
        require(rename(clip, QStringLiteral("tür")) && shown(clip.getName()) == QStringLiteral("tür"),
                "Latin-1 goes both ways");
        require(!rename(clip, QStringLiteral("戸")), "what Latin-1 has not is refused by this host");

        const float begin = clip.getBegin();
        const float end = clip.getEnd();
        const auto first = scrub(clip, begin);
        const auto middle = scrub(clip, begin + (end - begin) / 2.0F);
        require(!middle.nodes.empty(), "there is something to draw anew");
        require(scrub(clip, begin + (end - begin) / 2.0F).nodes.size() <= middle.nodes.size(),
                "a frame that is there already moves no more");
        scrub(clip, end);
        require(scrub(clip, end + 1000.0F).nodes.size() <= middle.nodes.size(),
                "past the range the ends are held");
        require(!first.all && !middle.all, "no camera moves");

        // An id outlasts the object; a pointer does not.
        const auto id = clip.getId();
        kaAnimationManager::the()->destroyStrip(&clip);
        require(kaAnimationManager::the()->getObject(id) == nullptr, "who keeps ids finds out");
    } // the scene and all of its animation go
    require(kaAnimationManager::the()->getObjects().empty(), "closing leaves nothing");
    kaAnimationManager::the()->terminate();
    osg::osgExit();
    return 0;
}
