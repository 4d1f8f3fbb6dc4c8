#include "operations/Containers.h"

#include <kaAnimationManager.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaMotion/ClipCopy.h>
#include <kaMotion/Text.h>

namespace ka::motion {

kaAnimationStrip* copyClip(kaAnimationStrip* clip, const std::string& name) {
    kaAnimationStrip* copy = kaAnimationManager::the()->duplicateStrip(clip);
    if (copy == nullptr)
        return nullptr;
    bool lossy = false;
    copy->setName(latin1FromUtf8(name, lossy));
    for (kaAnimationUnit* block : blocksBelow(*copy))
        if (const osg::NodePtr node = nodeOf(*block); node != osg::NullFC)
            kaAnimationUtils::addAnimationObject(node, block);
    return copy;
}

std::vector<std::string> copyClips(const std::vector<kaAnimationStrip*>& clips, const std::string& name) {
    std::vector<std::string> ids;
    for (kaAnimationStrip* clip : clips)
        if (const kaAnimationStrip* copy =
                copyClip(clip, ids.empty() ? name : name + " " + std::to_string(ids.size() + 1)))
            ids.push_back(std::to_string(copy->getId()));
    return ids;
}

} // namespace ka::motion
