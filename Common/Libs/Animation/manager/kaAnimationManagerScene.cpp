#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaControlPoint2D.h"
#include "kaFieldDiscovery.h"
#include "kaObjectRegistry.h"
#include "kaSceneAccess.h"
#include "kaSceneNodes.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <utility>

// How objects and fields are bound to scene nodes: ids, attachments, field discovery, the attribute list, and
// the factories that start from a node. Announcing a change lets the host do anything, so a node is looked up
// again by id after each.

using kaSceneAccess::attachmentOf;
using kaSceneAccess::coreOf;
using kaSceneAccess::isKindOf;
using kaSceneAccess::recordChange;

osg::NodePtr kaAnimationManager::_sceneRoot;

namespace {

/// Of the root that the host set; a root that is destroyed without notice is found missing by it.
osg::UInt32 sceneRootID = 0;

/// The objects of one type that stand for themselves in the scene, in ascending id order.
template <class Object>
std::vector<Object*> topLevelObjects(const kaAnimationManager& manager) {
    std::vector<Object*> objects;
    for (const auto& entry : manager.registry().byType(Object::_typeID)) {
        kaAnimationObject* object = entry.second;
        if (!object->isInternal() && !object->getParentObject())
            objects.push_back(static_cast<Object*>(object));
    }
    return objects;
}

template <class Visit>
void forEachCurve(const kaObjectRegistry& registry, Visit&& visit) {
    for (const auto& entry : registry.byType(KA_TYPE_CURVE))
        visit(*static_cast<kaAnimationCurve2D*>(entry.second));
}

using FieldReplacements = std::map<kaAnimationField*, kaAnimationField*>;

/// Moves the curves of each first field to the second, in one walk over all curves.
void replaceFields(const kaAnimationManager& manager, const FieldReplacements& replacements) {
    if (replacements.empty())
        return;
    forEachCurve(manager.registry(), [&](kaAnimationCurve2D& curve) {
        const auto found = replacements.find(manager.getField(curve.getField()));
        if (found != replacements.end())
            curve.setAnimationField(found->second);
    });
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

    static kaAnimationObject* find(kaUID id) { return kaAnimationManager::the()->getObject(id); }

    std::vector<Entry> _entries;
};

} // namespace

// Ids.

unsigned long long kaAnimationManager::freshIDFor(unsigned long long taken, bool isField) {
    const unsigned long long fresh = createUID();
    if (isField)
        changeAnimAttachmentFieldIDs(taken, fresh);
    else
        changeAnimAttachmentIDs(taken, fresh);
    return fresh;
}

/// An object that is not registered stays so; one whose former id is registered takes that entry over.
void kaAnimationManager::setID(unsigned long long id, kaAnimationObject* object) {
    if (!object)
        return;
    const unsigned long long old = object->getId();
    const unsigned long long given = isIDUnique(id) ? id : freshIDFor(id, false);
    object->setId(given);
    if (!_registry->find(old))
        return;
    try {
        _registry->replace(old, *object, given);
    } catch (...) {
        object->setId(old);
        throw;
    }
}

void kaAnimationManager::setID(unsigned long long id, kaAnimationField* field) {
    if (!field)
        return;
    const unsigned long long old = field->getId();
    const unsigned long long given = isIDUnique(id) ? id : freshIDFor(id, true);
    if (_registry->findField(old))
        _registry->replaceField(old, *field, given);
    field->setId(given);
}

/// Visiting the nodes would change none of them (the visitors never write back), and a document full of taken
/// ids would walk the whole scene for each: the pair is kept, the walk is not made.
void kaAnimationManager::changeAnimAttachmentIDs(unsigned long long from, unsigned long long to) {
    if (getSceneRootNode() == osg::NullFC)
        return;
    _changeFromID = from;
    _changeToID = to;
}

void kaAnimationManager::changeAnimAttachmentFieldIDs(unsigned long long from, unsigned long long to) {
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
    _sceneRoot = root;
    sceneRootID = root != osg::NullFC ? root.getFieldContainerId() : 0;
}

const osg::NodePtr& kaAnimationManager::getSceneRootNode() {
    if (sceneRootID != 0 && kaSceneNodes::find(sceneRootID) == osg::NullFC)
        setSceneRootNode(osg::NullFC);
    return _sceneRoot;
}

std::vector<kaAnimationField*> kaAnimationManager::getAnimationFields(const osg::NodePtr& node) {
    if (coreOf(node) == osg::NullFC)
        return {};
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    kaAnimationUtils::createAnimationAttachment(node, true);
    return kaAnimationUtils::getAnimationFields(kaSceneNodes::find(nodeID));
}

std::vector<kaAnimationUnit*> kaAnimationManager::getSceneUnits() const {
    return topLevelObjects<kaAnimationUnit>(*this);
}

std::vector<kaAnimationUnit*> kaAnimationManager::getActiveSceneUnits() const {
    std::vector<kaAnimationUnit*> units = getSceneUnits();
    units.erase(
        std::remove_if(units.begin(), units.end(), [](const auto* unit) { return !unit->isActive(); }),
        units.end());
    return units;
}

std::vector<kaAnimationStrip*> kaAnimationManager::getSceneStrips() const {
    return topLevelObjects<kaAnimationStrip>(*this);
}

std::vector<kaAnimationField*> kaAnimationManager::getReferencedFields(unsigned int fcID) const {
    std::vector<kaAnimationField*> fields;
    forEachCurve(*_registry, [&](const kaAnimationCurve2D& curve) {
        kaAnimationField* field = getField(curve.getField());
        if (field && field->fcID == fcID)
            fields.push_back(field);
    });
    return fields;
}

std::vector<kaAnimationCurve2D*> kaAnimationManager::getReferencedCurves(unsigned long long fieldID) const {
    std::vector<kaAnimationCurve2D*> curves;
    if (!getField(fieldID))
        return curves;
    forEachCurve(*_registry, [&](kaAnimationCurve2D& curve) {
        if (curve.getField() == fieldID)
            curves.push_back(&curve);
    });
    return curves;
}

void kaAnimationManager::setExclusiveActiveNodeUnit(kaAnimationUnit* unit) {
    if (!unit)
        return;
    for (kaAnimationObject* other :
         kaAnimationUtils::getAnimationObjects(kaSceneNodes::find(unit->getNodeID())))
        if (other != unit && other->getTypeID() == KA_TYPE_UNIT)
            other->setActive(false);
}

// Fields of scene nodes.

std::vector<kaAnimationField*> kaAnimationManager::createAnimationFields(const osg::NodePtr& node) {
    if (coreOf(node) == osg::NullFC)
        return {};
    std::vector<kaAnimationField*> fields = kaAnimationUtils::getAnimationFields(node);
    if (!fields.empty())
        return fields;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    kaAnimationUtils::createAnimationAttachment(node, false);

    const osg::NodePtr current = kaSceneNodes::find(nodeID);
    const osg::AnimAttachmentPtr attachment = attachmentOf(current);
    if (attachment == osg::NullFC || coreOf(current) == osg::NullFC)
        return {};
    fields = kaAnimationUtils::getAnimationFields(current);
    if (!fields.empty())
        return fields;
    kaFieldDiscovery discovery(current);
    fields = discovery.run();
    osg::MFUInt64& listed = attachment->getFieldIDs();
    listed.reserve(listed.size() + fields.size()); // from here on nothing can fail
    for (const kaAnimationField* field : fields)
        listed.push_back(field->getId());
    discovery.keep();
    recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    return fields;
}

kaAnimationField* kaAnimationManager::getField(const osg::NodePtr& node, std::string attribute) {
    if (node == osg::NullFC || attribute.empty())
        return nullptr;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const std::string wanted = kaAnimationUtils::fullAttributeName(attribute);
    createAnimationFields(node);
    for (kaAnimationField* field : kaAnimationUtils::getAnimationFields(kaSceneNodes::find(nodeID)))
        if (field->attribute == wanted)
            return field;
    return nullptr;
}

std::vector<kaAnimationField*> kaAnimationManager::recreateAnimationFields(const osg::NodePtr& node) {
    if (node == osg::NullFC)
        return {};
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    std::printf("Recreating animation fields for node %i\n", static_cast<int>(nodeID));
    const auto attachment =
        osg::AnimAttachmentPtr::dcast(kaAnimationUtils::createAnimationAttachment(node, true));
    if (attachment == osg::NullFC)
        return {};
    for (const osg::UInt64 id : attachment->getFieldIDs())
        destroyField(getField(id));
    attachment->getFieldIDs().clear();
    recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    return createAnimationFields(kaSceneNodes::find(nodeID));
}

void kaAnimationManager::checkUniqueAttributes() {
    kaSceneNodes::forEach(getSceneRootNode(), ensureUniqueAttributes);
}

osg::Action::ResultE kaAnimationManager::ensureUniqueAttributes(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    if (attachment == osg::NullFC)
        return osg::Action::Continue;
    std::map<std::string, kaAnimationField*> first;
    FieldReplacements replacements;
    osg::MFUInt64& listed = attachment->getFieldIDs();
    std::vector<osg::UInt64> kept;
    for (const osg::UInt64 id : listed) {
        kaAnimationField* field = the()->getField(id);
        if (!field)
            continue;
        const auto [entry, isNew] = first.emplace(field->attribute, field);
        if (isNew)
            kept.push_back(id);
        else
            replacements.emplace(field, entry->second);
    }
    if (kept.size() != listed.size()) {
        listed.erase(std::copy(kept.begin(), kept.end(), listed.begin()), listed.end());
        recordChange(attachment, osg::AnimAttachment::FieldIDsFieldMask);
    }
    replaceFields(*the(), replacements);
    return osg::Action::Continue;
}

void kaAnimationManager::changeFieldReferences(kaAnimationField* from, kaAnimationField* to) {
    if (from && to)
        replaceFields(*this, {{from, to}});
}

void kaAnimationManager::completeAnimationFieldNodes() {
    kaSceneNodes::forEach(getSceneRootNode(), completeAnimationFieldNode);
}

/// Visibility and rotation fields are pointed at the core like all others; writing falls back on the node's
/// id then.
osg::Action::ResultE kaAnimationManager::completeAnimationFieldNode(const osg::NodePtr& node) {
    const osg::AnimAttachmentPtr attachment = attachmentOf(node);
    const osg::NodeCorePtr core = coreOf(node);
    if (attachment == osg::NullFC || core == osg::NullFC)
        return osg::Action::Continue;
    const osg::UInt32 nodeID = kaSceneNodes::idOf(node);
    const bool isMaterialGroup = isKindOf<osg::MaterialGroup>(core);
    const osg::FieldContainerPtr container =
        isMaterialGroup ? kaSceneAccess::materialOf(core) : osg::FieldContainerPtr(core);
    for (kaAnimationField* field : kaAnimationUtils::getAnimationFields(node)) {
        field->nodeID = nodeID;
        if (container != osg::NullFC)
            field->fcID = container.getFieldContainerId();
    }
    for (kaAnimationObject* object : kaAnimationUtils::getAnimationObjects(node))
        if (object->getTypeID() == KA_TYPE_UNIT)
            static_cast<kaAnimationUnit*>(object)->setNodeID(nodeID);
    return osg::Action::Continue;
}

// Names that the host treats as animatable.

bool kaAnimationManager::isAnimationAttribute(const std::string& name) const {
    return std::find(_animationAttributes.begin(), _animationAttributes.end(), name) !=
           _animationAttributes.end();
}

void kaAnimationManager::addAnimationAttribute(std::string name) {
    if (!isAnimationAttribute(name))
        _animationAttributes.push_back(std::move(name));
}

void kaAnimationManager::addAnimationAttributes(std::string names) {
    std::size_t begin = 0;
    for (std::size_t comma = names.find(','); comma != std::string::npos; comma = names.find(',', begin)) {
        addAnimationAttribute(names.substr(begin, comma - begin));
        begin = comma + 1;
    }
    addAnimationAttribute(names.substr(begin));
}

void kaAnimationManager::subAnimationAttribute(const std::string& name) {
    const std::string wanted = name; // may be an entry of the list itself
    auto& names = _animationAttributes;
    names.erase(std::remove(names.begin(), names.end(), wanted), names.end());
}

// Factories that start from a node.

kaAnimationCurve2D* kaAnimationManager::createCurve2D(kaAnimationField* field, const std::string& name,
                                                      unsigned long long id, bool attach) {
    auto made = std::make_unique<kaAnimationCurve2D>(field, name, id);
    _registry->insert(*made);
    kaAnimationCurve2D* curve = made.release();
    return attach && field
               ? kaSceneAccess::listedOn(kaSceneNodes::find(static_cast<osg::UInt32>(field->nodeID)), curve)
               : curve;
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(const osg::NodePtr& node,
                                                      const std::string& attribute) {
    kaAnimationField* field = getField(node, attribute);
    return field ? createCurve2D(field, field->attribute, 0, false) : nullptr;
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(const osg::NodePtr& node, std::string attribute,
                                                      const std::vector<kaControlPoint2D*>& points,
                                                      unsigned long long id, bool attach) {
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
                                                const std::string& name, unsigned long long id, bool attach) {
    kaAnimationUnit* unit = createUnit(name, id);
    for (kaAnimationCurve2D* curve : curves)
        unit->addObject(curve);
    return attach ? kaSceneAccess::listedOn(kaSceneNodes::find(unit->getNodeID()), unit) : unit;
}
