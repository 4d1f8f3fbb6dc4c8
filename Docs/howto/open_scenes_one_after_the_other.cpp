// A host's day: a scene and its document are opened, played and closed, three times over. Each time the same
// is there, and what closing leaves is nothing.
//
// Run as: howto_open_scenes_one_after_the_other scene.osg document.xml
#include "require.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGSceneFileHandler.h>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <malloc.h>
#include <vector>

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

kaAnimationController& controller() {
    return *kaAnimationController::the();
}

osg::NodePtr open(const char* scene, const char* document) {
    const osg::NodePtr root = osg::SceneFileHandler::the().read(scene);
    require(root != osg::NullFC, "the scene is there");
    osg::addRefCP(root);
    kaAnimationManager::setSceneRootNode(root);
    require(manager().loadAnimations(document, true), "the document is there");
    return root;
}

void play() {
    static double seconds = 0.0;
    kaAnimationController::setTimeCB([] { return seconds; });
    controller().setEvalActiveUnits(true);
    controller().playGlobal(0, false, false, 0.0F, 25.0F, 0.0F);
    for (; kaAnimationController::isPlaying(); seconds += 0.04)
        controller().playLoop();
}

void close(osg::NodePtr root) {
    controller().stopGlobal();
    controller().stop();
    manager().clearCopyBuffer(true);
    manager().destroyAllObjects(true);
    for (const auto& entry : manager().getObjects()) // at most one
        manager().destroyObject(entry.second);
    manager().destroyAllFields();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::subRefCP(root);
}

std::size_t memoryInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

} // namespace

int main(int argc, char** argv) {
    require(argc == 3, "a scene and its document are named");
    osg::osgInit(argc, argv);
    manager().init(nullptr);
    manager().addAnimationAttributes("translation,scale,diffuse,fieldOfView");

    std::vector<std::size_t> objects;
    std::vector<std::size_t> fields;
    std::vector<std::size_t> clips;
    std::vector<std::size_t> filled;
    std::vector<std::size_t> left;
    for (int time = 0; time < 3; ++time) {
        const osg::NodePtr root = open(argv[1], argv[2]);
        objects.push_back(manager().getObjects().size());
        fields.push_back(manager().getFields().size());
        clips.push_back(manager().getSceneStrips().size());
        filled.push_back(0);
        for (const kaAnimationStrip* clip : manager().getSceneStrips())
            filled.back() += clip->getCurves().empty() ? 0 : 1;
        play();
        close(root);
        require(manager().getObjects().empty(), "no object is left");
        require(manager().getFields().empty(), "no field is left");
        left.push_back(memoryInUse());
    }
    require(objects[0] > 1000 && filled[0] == clips[0] && clips[0] > 0, "it is a real scene");
    for (int time = 1; time < 3; ++time) {
        require(objects[time] == objects[0] && fields[time] == fields[0], "the same is there each time");
        require(clips[time] == clips[0] && filled[time] == filled[0], "the same clips are filled each time");
    }
    // The embedded scene graph keeps sixteen bytes for every container that ever was.
    require(left[2] < left[1] + 64 * 1024, "no memory grows");

    manager().terminate();
    osg::osgExit();
    return 0;
}
