#include "kaSceneRoot.h"

#include "kaSceneNodes.h"

namespace {

osg::NodePtr sceneRoot;
osg::UInt32 sceneRootID = 0; ///< a root that is destroyed without notice is found missing by it

} // namespace

void kaSceneRoot::set(const osg::NodePtr& root) {
    sceneRoot = root;
    sceneRootID = kaSceneNodes::idOf(root);
}

const osg::NodePtr& kaSceneRoot::get() {
    if (sceneRootID != 0 && kaSceneNodes::find(sceneRootID) == osg::NullFC)
        set(osg::NullFC);
    return sceneRoot;
}
