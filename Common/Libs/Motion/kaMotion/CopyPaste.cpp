#include <OpenSG/OSGFieldContainer.h>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUtils.h>
#include <kaMotion/CopyPaste.h>
#include <kaMotion/Failure.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <set>

namespace ka::motion {

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

std::vector<kaUID> idsOf(const std::vector<kaAnimationObject*>& objects) {
    std::vector<kaUID> ids;
    for (const kaAnimationObject* object : objects)
        ids.push_back(object->getId());
    return ids;
}

/// Whole trees from their roots down, then what no tree held.
void destroyAll(const std::vector<kaUID>& ids) {
    for (const bool rootsOnly : {true, false})
        for (const kaUID id : ids) {
            kaAnimationObject* alive = manager().getObject(id);
            if (alive != nullptr && (!rootsOnly || alive->getParentObject() == nullptr))
                manager().destroyObject(alive);
        }
}

void destroyFieldsBut(const std::set<kaUID>& kept) {
    for (const auto& [id, field] : manager().getFields())
        if (kept.count(id) == 0)
            manager().destroyField(field);
}

bool hasField(const std::vector<kaAnimationField*>& fields, const kaAnimationField& wanted) {
    return std::any_of(fields.begin(), fields.end(), [&wanted](const kaAnimationField* field) {
        return field->attribute == wanted.attribute && field->valuePos == wanted.valuePos;
    });
}

} // namespace

CopiedAnimation::CopiedAnimation(const osg::NodePtr& node)
    : _node(node), _name(nodePath(node)), _objects(idsOf(kaAnimationUtils::getAnimationObjects(node))) {
    if (_objects.empty() || !manager().copy(node))
        throw Failure(ExitCode::Usage, "'" + oneLine(_name) + "' has no animation to copy");
    manager().clearCopyBuffer(true);
    osg::addRefCP(_node);
}

CopiedAnimation::~CopiedAnimation() {
    if (_isDetached)
        for (kaAnimationObject* object : objects())
            manager().destroyObject(object);
    for (const kaUID field : _fields)
        manager().destroyField(manager().getField(field));
    osg::subRefCP(_node);
}

std::vector<kaAnimationObject*> CopiedAnimation::objects() const {
    std::vector<kaAnimationObject*> objects;
    for (const kaUID id : _objects)
        objects.push_back(manager().getObject(id));
    return objects;
}

void CopiedAnimation::detach() {
    // All that is registered now goes, by id: a copy brings more with it than it lists, the handles of its
    // keys.
    std::vector<kaUID> before;
    for (const auto& [id, object] : manager().getObjects())
        before.push_back(id);
    manager().copy(objects());
    const std::vector<kaAnimationObject*> copies = manager().getCopyBuffer();
    manager().clearCopyBuffer(false);
    for (const kaAnimationObject* copy : copies)
        for (kaAnimationCurve2D* curve : copy->getCurves())
            if (kaAnimationField* field = manager().duplicateField(manager().getField(curve->getField()))) {
                curve->setAnimationField(field);
                _fields.push_back(field->getId());
            }
    _objects = idsOf(copies);
    _isDetached = true;
    destroyAll(before);
    destroyFieldsBut({_fields.begin(), _fields.end()});
}

std::size_t CopiedAnimation::curveCount() const {
    std::size_t count = 0;
    for (const kaAnimationObject* object : objects())
        count += object->getCurves().size();
    return count;
}

std::string CopiedAnimation::obstacle(const osg::NodePtr& node) const {
    if (osg::NodePtr(node)->getCore() == osg::NullFC)
        return "is no node that can be animated";
    if (!kaAnimationUtils::checkPasteTo(node, objects()))
        return "is of another kind than '" + oneLine(_name) + "'";
    const bool hadAttachment = kaAnimationUtils::getAnimationAttachment(node) != osg::NullFC;
    const std::string missing = missingField(node);
    if (missing.empty())
        return "";
    if (!hadAttachment) {
        for (kaAnimationField* field : kaAnimationUtils::getAnimationFields(node))
            manager().destroyField(field);
        kaAnimationUtils::removeAnimationAttachment(node);
    }
    return "has no field for " + oneLine(utf8FromLatin1(missing));
}

/// A host that animates an attribute offers it on every node that has it, so the names of the copied fields
/// count as animatable.
std::string CopiedAnimation::missingField(const osg::NodePtr& node) const {
    std::vector<const kaAnimationField*> wanted;
    for (const kaAnimationObject* object : objects())
        for (const kaAnimationCurve2D* curve : object->getCurves())
            wanted.push_back(manager().getField(curve->getField()));
    for (const kaAnimationField* field : wanted)
        manager().addAnimationAttribute(field->name);
    const std::vector<kaAnimationField*> fields = manager().createAnimationFields(node);
    const auto isMissing = [&fields](const kaAnimationField* field) { return !hasField(fields, *field); };
    const auto missing = std::find_if(wanted.begin(), wanted.end(), isMissing);
    return missing == wanted.end() ? std::string() : (*missing)->attribute;
}

bool CopiedAnimation::pasteTo(const osg::NodePtr& node) const {
    return manager().copy(objects()) && manager().paste(node, false);
}

PasteReport paste(const CopiedAnimation& animation, const osg::NodePtr& root, const std::string& text,
                  const osg::NodePtr& except) {
    const bool isOne = !isPattern(text);
    std::vector<osg::NodePtr> targets =
        isOne ? std::vector<osg::NodePtr>{chosenNode(root, text)} : matchingNodes(root, text);
    if (isOne && targets.front() == except)
        throw Failure(ExitCode::Usage, "'" + oneLine(text) + "' is where the animation comes from");
    PasteReport report;
    std::vector<osg::NodePtr> takers;
    for (const osg::NodePtr& node : targets) {
        if (node == except)
            continue;
        const std::string obstacle = animation.obstacle(node);
        if (obstacle.empty())
            takers.push_back(node);
        else
            report.passedBy.push_back("'" + oneLine(nodePath(node)) + "' " + obstacle);
    }
    if (takers.empty())
        throw Failure(ExitCode::Usage, report.passedBy.size() == 1
                                           ? report.passedBy.front()
                                           : "none of the " + counted(report.passedBy.size(), "node") +
                                                 " that match '" + oneLine(text) +
                                                 "' can take the animation");
    for (const osg::NodePtr& node : takers)
        if (animation.pasteTo(node))
            report.pasted.push_back(nodePath(node));
    return report;
}

} // namespace ka::motion
