#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAttachments.h"
#include "kaAttributeNames.h"
#include "kaControlPoint2D.h"
#include "kaFieldCurves.h"
#include "kaFieldStore.h"
#include "kaNodeFields.h"
#include "kaObjectStore.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"
#include "kaSceneObjects.h"
#include "kaSceneRoot.h"
#include "kaWeak.h"

#include <array>
#include <cstdio>
#include <utility>

// How objects and fields are bound to scene nodes: ids, attachments, fields of nodes, the attribute list, and
// the factories that start from a node. Announcing a change lets the host do anything, so a node is looked up
// again by id after each.

using kaSceneAccess::coreOf;

namespace {

template <class Visit>
void forEachCurve(Visit&& visit) {
    for (const auto& entry : kaObjectRegistry::the().byType(kaAnimationCurve2D::_typeID))
        visit(*static_cast<kaAnimationCurve2D*>(entry.second));
}

/// Lists an object on a node, if there is one. @return the object, or null when the host freed it in answer
/// to the announcement of a new attachment.
template <class Object>
Object* listedOn(const osg::NodePtr& node, Object* object) {
    const kaWeak<kaAnimationObject> alive(*object);
    kaNodeFields::list(node, object);
    return alive ? object : nullptr;
}

/// The field attribute that the interchange format calls `attribute`; empty for names that it does not have.
std::string fieldAttributeOf(const std::string& attribute) {
    static constexpr std::array<std::pair<const char*, const char*>, 10> names{
        {{"TransformTX", "translationX"},
         {"TransformTY", "translationY"},
         {"TransformTZ", "translationZ"},
         {"TransformRX", "rotationX"},
         {"TransformRY", "rotationY"},
         {"TransformRZ", "rotationZ"},
         {"TransformSX", "scaleX"},
         {"TransformSY", "scaleY"},
         {"TransformSZ", "scaleZ"},
         {"Fov", "fieldOfView"}}};
    for (const auto& [interchange, field] : names)
        if (attribute == interchange)
            return field;
    return {};
}

/// The keys that a caller handed over. Those that the registry knew and the host freed meanwhile are left
/// out.
class PassedPoints {
  public:
    explicit PassedPoints(const std::vector<kaControlPoint2D*>& points) {
        for (kaControlPoint2D* point : points) {
            const bool isRegistered = point && find(point->getId()) == point;
            _entries.push_back({point, isRegistered ? point->getId() : 0});
        }
    }

    std::vector<kaControlPoint2D*> remaining() const {
        std::vector<kaControlPoint2D*> points;
        for (const Entry& entry : _entries)
            if (entry.id == 0 || find(entry.id) == entry.point)
                points.push_back(entry.point);
        return points;
    }

  private:
    struct Entry {
        kaControlPoint2D* point;
        kaUID id;
    };

    static kaAnimationObject* find(kaUID id) { return kaObjectStore::find(id); }

    std::vector<Entry> _entries;
};

} // namespace

// Ids.

kaUID kaAnimationManager::freshIDFor(kaUID taken, bool isField) {
    const kaUID fresh = createUID();
    if (isField)
        changeAnimAttachmentFieldIDs(taken, fresh);
    else
        changeAnimAttachmentIDs(taken, fresh);
    return fresh;
}

void kaAnimationManager::setID(kaUID id, kaAnimationObject* object) {
    if (object)
        kaObjectStore::rename(*object, isIDUnique(id) ? id : freshIDFor(id, false));
}

void kaAnimationManager::setID(kaUID id, kaAnimationField* field) {
    if (field)
        kaFieldStore::rename(*field, isIDUnique(id) ? id : freshIDFor(id, true));
}

/// Visiting the nodes would change none of them (the visitors never write back), and a document full of taken
/// ids would walk the whole scene for each: the pair is kept, the walk is not made.
void kaAnimationManager::changeAnimAttachmentIDs(kaUID from, kaUID to) {
    if (getSceneRootNode() == osg::NullFC)
        return;
    _changeFromID = from;
    _changeToID = to;
}

void kaAnimationManager::changeAnimAttachmentFieldIDs(kaUID from, kaUID to) {
    changeAnimAttachmentIDs(from, to);
}

osg::Action::ResultE kaAnimationManager::changeSceneAnimAttachmentIDs(const osg::NodePtr& /*node*/) {
    return osg::Action::Continue;
}

osg::Action::ResultE kaAnimationManager::changeSceneAnimAttachmentFieldIDs(const osg::NodePtr& /*node*/) {
    return osg::Action::Continue;
}

// The scene and what is bound to it.

void kaAnimationManager::setSceneRootNode(const osg::NodePtr& root) {
    kaSceneRoot::set(root);
}

const osg::NodePtr& kaAnimationManager::getSceneRootNode() {
    return kaSceneRoot::get();
}

std::vector<kaAnimationField*> kaAnimationManager::getAnimationFields(const osg::NodePtr& node) {
    return kaNodeFields::get(node);
}

std::vector<kaAnimationUnit*> kaAnimationManager::getSceneUnits() const {
    return kaSceneObjects<kaAnimationUnit>();
}

std::vector<kaAnimationUnit*> kaAnimationManager::getActiveSceneUnits() const {
    return kaActiveSceneObjects<kaAnimationUnit>();
}

std::vector<kaAnimationStrip*> kaAnimationManager::getSceneStrips() const {
    return kaSceneObjects<kaAnimationStrip>();
}

std::vector<kaAnimationField*> kaAnimationManager::getReferencedFields(unsigned int fcID) const {
    std::vector<kaAnimationField*> fields;
    forEachCurve([&](const kaAnimationCurve2D& curve) {
        kaAnimationField* field = getField(curve.getField());
        if (field && field->fcID == fcID)
            fields.push_back(field);
    });
    return fields;
}

std::vector<kaAnimationCurve2D*> kaAnimationManager::getReferencedCurves(kaUID fieldID) const {
    return getField(fieldID) ? kaFieldCurves::of(fieldID) : std::vector<kaAnimationCurve2D*>();
}

void kaAnimationManager::setExclusiveActiveNodeUnit(kaAnimationUnit* unit) {
    if (!unit)
        return;
    for (kaAnimationObject* other : kaAttachments::objectsOf(kaSceneNodes::find(unit->getNodeID())))
        if (other != unit && kaObjectCast<kaAnimationUnit>(other))
            other->setActive(false);
}

// Fields of scene nodes.

std::vector<kaAnimationField*> kaAnimationManager::createAnimationFields(const osg::NodePtr& node) {
    return kaNodeFields::make(node);
}

kaAnimationField* kaAnimationManager::getField(const osg::NodePtr& node, std::string attribute) {
    return kaNodeFields::find(node, attribute);
}

std::vector<kaAnimationField*> kaAnimationManager::recreateAnimationFields(const osg::NodePtr& node) {
    return kaNodeFields::remake(node);
}

void kaAnimationManager::checkUniqueAttributes() {
    kaSceneNodes::forEach(getSceneRootNode(), ensureUniqueAttributes);
}

osg::Action::ResultE kaAnimationManager::ensureUniqueAttributes(const osg::NodePtr& node) {
    kaNodeFields::makeUnique(node);
    return osg::Action::Continue;
}

void kaAnimationManager::changeFieldReferences(kaAnimationField* from, kaAnimationField* to) {
    if (from && to)
        kaNodeFields::replace(*from, *to);
}

void kaAnimationManager::completeAnimationFieldNodes() {
    kaSceneNodes::forEach(getSceneRootNode(), completeAnimationFieldNode);
}

osg::Action::ResultE kaAnimationManager::completeAnimationFieldNode(const osg::NodePtr& node) {
    kaNodeFields::complete(node);
    return osg::Action::Continue;
}

// Names that the host treats as animatable.

bool kaAnimationManager::isAnimationAttribute(const std::string& name) const {
    return kaAttributeNames::the().contains(name);
}

void kaAnimationManager::addAnimationAttribute(std::string name) {
    kaAttributeNames::the().add(name);
}

void kaAnimationManager::addAnimationAttributes(std::string names) {
    kaAttributeNames::the().addAll(names);
}

void kaAnimationManager::subAnimationAttribute(const std::string& name) {
    kaAttributeNames::the().remove(name);
}

const std::vector<std::string>& kaAnimationManager::getAnimationAttributes() const {
    return kaAttributeNames::the().names();
}

// Factories that start from a node.

kaAnimationCurve2D* kaAnimationManager::createCurve2D(kaAnimationField* field, const std::string& name,
                                                      kaUID id, bool attach) {
    auto* curve = kaObjectStore::make<kaAnimationCurve2D>(field, name, id);
    return attach && field ? listedOn(kaSceneNodes::find(static_cast<osg::UInt32>(field->nodeID)), curve)
                           : curve;
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(const osg::NodePtr& node,
                                                      const std::string& attribute) {
    kaAnimationField* field = getField(node, attribute);
    return field ? createCurve2D(field, field->attribute, 0, false) : nullptr;
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(const osg::NodePtr& node, std::string attribute,
                                                      const std::vector<kaControlPoint2D*>& points, kaUID id,
                                                      bool attach) {
    if (coreOf(node) == osg::NullFC)
        return nullptr;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const PassedPoints passed(points);
    createAnimationFields(node);
    const osg::NodePtr current = kaSceneNodes::find(nodeID);
    kaAnimationField* field = getField(current, fieldAttributeOf(attribute));
    const osg::NodeCorePtr core = coreOf(current);
    if (!field || core == osg::NullFC) {
        std::printf("kaAnimationManager::importQLNCurve failed! Could not recognize attribute %s!\n",
                    attribute.c_str());
        return nullptr;
    }
    field->nodeID = nodeID;
    field->fcID = core.getFieldContainerId();
    kaAnimationCurve2D* curve = createCurve2D(field, field->attribute, id, attach);
    if (curve)
        curve->setPoints(passed.remaining());
    return curve;
}

kaAnimationUnit* kaAnimationManager::createUnit(const std::vector<kaAnimationCurve2D*>& curves,
                                                const std::string& name, kaUID id, bool attach) {
    kaAnimationUnit* unit = createUnit(name, id);
    for (kaAnimationCurve2D* curve : curves)
        unit->addObject(curve);
    return attach ? listedOn(kaSceneNodes::find(unit->getNodeID()), unit) : unit;
}
