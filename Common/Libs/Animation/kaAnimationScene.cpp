#include "kaAnimationScene.h"

#include "kaAnimationController.h"
#include "kaAnimationManager.h"
#include "kaAnimationStrip.h"
#include "kaChangedNodes.h"
#include "kaObjectStore.h"
#include "kaSceneNodes.h"

#include <OpenSG/OSGSceneFileHandler.h>
#include <QFile>
#include <algorithm>
#include <utility>

namespace {

/// Whole trees from their roots down, which costs no more than they are large; then what no root leads to.
void destroyObjects() {
    for (const bool rootsOnly : {true, false})
        for (const auto& entry : kaObjectRegistry::the().ordered()) {
            kaAnimationObject* object = kaObjectStore::find(entry.first);
            if (object && (!rootsOnly || !object->getParentObject()))
                kaObjectStore::destroy(object);
        }
}

} // namespace

kaAnimationScene::~kaAnimationScene() {
    close();
}

kaAnimationScene::Opening kaAnimationScene::open(const QString& scene, const QString& document) {
    const QByteArray name = QFile::encodeName(scene);
    const osg::NodePtr root = osg::SceneFileHandler::the().read(name.constData());
    if (root == osg::NullFC)
        return Opening::SceneRefused;
    return exchange(root, document);
}

kaAnimationScene::Opening kaAnimationScene::open(const osg::NodePtr& root, const QString& document) {
    return root != osg::NullFC ? exchange(root, document) : Opening::SceneRefused;
}

/// The new root is counted before the old one goes: it may be the same, or stand below it.
kaAnimationScene::Opening kaAnimationScene::exchange(osg::NodePtr root, const QString& document) {
    osg::addRefCP(root);
    const auto begin = [this, root] {
        close();
        _root = root;
        kaAnimationManager::setSceneRootNode(root);
    };
    if (document.isEmpty()) {
        begin();
        return Opening::Opened;
    }
    if (kaAnimationManager::the()->load(document, true, begin))
        return Opening::Opened;
    osg::subRefCP(root);
    return Opening::DocumentRefused;
}

void kaAnimationScene::close() {
    if (!isOpen())
        return;
    kaAnimationManager& manager = *kaAnimationManager::the();
    kaAnimationController& controller = *kaAnimationController::the();
    controller.stopGlobal();
    controller.stop();
    controller.setObjectID(0);
    controller.setCurveIDs({});
    manager.clearCopyBuffer(true);
    destroyObjects();
    manager.destroyAllFields();
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    osg::NodePtr root = std::exchange(_root, osg::NodePtr());
    osg::subRefCP(root);
}

std::vector<kaAnimationStrip*> kaAnimationScene::clips() {
    std::vector<kaAnimationStrip*> clips = kaAnimationManager::the()->getSceneStrips();
    std::stable_sort(clips.begin(), clips.end(), [](const kaAnimationStrip* a, const kaAnimationStrip* b) {
        return a->getName() < b->getName();
    });
    return clips;
}

kaAnimationScene::Redraw kaAnimationScene::redraw() {
    const kaChangedNodes changed;
    Redraw redraw;
    for (const osg::UInt32 id : changed.ids())
        redraw.nodes.push_back(kaSceneNodes::find(id));
    redraw.all = changed.areMore();
    return redraw;
}
