#include "kaAnimationManager.h"

#include "kaAnimationController.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAttachments.h"
#include "kaConnections.h"
#include "kaControlPoint2D.h"
#include "kaFieldStore.h"
#include "kaNodeFields.h"
#include "kaObjectStore.h"
#include "kaRounding.h"
#include "kaSceneNodes.h"
#include "kaSceneSync.h"
#include "kaWeak.h"

#include <ctime>

// Ids, lookup, creation, duplication and destruction. The other operations stand in
// kaAnimationManagerScene.cpp, ...Sync.cpp, ...Connections.cpp, ...Documents.cpp and ...Import.cpp.

namespace {

bool managerAlive = false;

/// Takes a curve or block off the list of its scene node.
void leaveNode(kaAnimationObject& object) {
    osg::NodePtr node = osg::NullFC;
    if (const auto* curve = kaObjectCast<kaAnimationCurve2D>(&object))
        node = curve->getParentOSGNode();
    else if (const auto* block = kaObjectCast<kaAnimationUnit>(&object))
        node = kaSceneNodes::find(block->getNodeID());
    if (node != osg::NullFC)
        kaAttachments::unlist(node, object.getId());
}

/// A frame or value snapped as an unsigned whole number: negative ones wrap around.
float snappedUnsigned(float value) {
    return static_cast<float>(static_cast<unsigned int>(kaRounding::toInt(value)));
}

} // namespace

// Set-up.

kaAnimationManager* kaAnimationManager::the() {
    static kaAnimationManager instance;
    return &instance;
}

kaAnimationManager::kaAnimationManager()
    : _sceneSync(std::make_unique<kaSceneSync>()),
      _connections(std::make_unique<kaConnections>()),
      _copyBuffer(std::make_unique<kaWeakList<kaAnimationObject>>()) {
    kaObjectRegistry::the(); // made first, it outlives this
    managerAlive = true;
    kaObjectStore::hooks = {
        &leaveNode, [](const std::vector<kaUID>& connections) { the()->executeTriggers(connections); }};
}

kaAnimationManager::~kaAnimationManager() {
    managerAlive = false;
    kaObjectStore::hooks = {};
}

bool kaAnimationManager::isAlive() {
    return managerAlive;
}

void kaAnimationManager::init(QWidget* /*parent*/) {
    _changeFromID = 0;
    _changeToID = 0;
    random(static_cast<unsigned long long>(std::time(nullptr)));
}

void kaAnimationManager::terminate() {
    clearCopyBuffer(true);
}

// Ids.

unsigned long long kaAnimationManager::random(unsigned long long seed) {
    return kaObjectRegistry::random(seed);
}

kaUID kaAnimationManager::createUID() {
    return kaObjectRegistry::the().createUID();
}

bool kaAnimationManager::isIDUnique(kaUID id) const {
    return kaObjectRegistry::the().isIDUnique(id);
}

// Lookup.

kaAnimationObject* kaAnimationManager::getObject(kaUID id) const {
    return kaObjectRegistry::the().find(id);
}

kaAnimationObject* kaAnimationManager::getObject(const std::string& name) const {
    return kaObjectStore::findByName(name);
}

bool kaAnimationManager::isObjectNameUnique(const std::string& name) const {
    return !name.empty() && !kaObjectRegistry::the().names().contains(name);
}

kaControlPoint2D* kaAnimationManager::getPoint2D(kaUID id) const {
    return kaObjectStore::find<kaControlPoint2D>(id);
}

kaAnimationCurve2D* kaAnimationManager::getCurve2D(kaUID id) const {
    return kaObjectStore::find<kaAnimationCurve2D>(id);
}

kaAnimationUnit* kaAnimationManager::getUnit(kaUID id) const {
    return kaObjectStore::find<kaAnimationUnit>(id);
}

kaAnimationStreak* kaAnimationManager::getStreak(kaUID id) const {
    return kaObjectStore::find<kaAnimationStreak>(id);
}

kaAnimationStrip* kaAnimationManager::getStrip(kaUID id) const {
    return kaObjectStore::find<kaAnimationStrip>(id);
}

kaAnimationSequence* kaAnimationManager::getSequence(kaUID id) const {
    return kaObjectStore::find<kaAnimationSequence>(id);
}

kaAnimationField* kaAnimationManager::getField(kaUID id) const {
    return kaObjectRegistry::the().findField(id);
}

std::map<kaUID, kaAnimationObject*> kaAnimationManager::getObjects() const {
    const auto entries = kaObjectRegistry::the().ordered();
    return {entries.begin(), entries.end()};
}

std::map<kaUID, kaAnimationField*> kaAnimationManager::getFields() const {
    return kaObjectRegistry::the().fields();
}

std::vector<kaAnimationObject*> kaAnimationManager::getObjects(unsigned int type) const {
    std::vector<kaAnimationObject*> objects;
    if (type >= KA_TYPE_COUNT)
        return objects;
    const auto entries = kaObjectRegistry::the().ofType(type);
    objects.reserve(entries.size());
    for (const auto& entry : entries)
        objects.push_back(entry.second);
    return objects;
}

std::size_t kaAnimationManager::getObjectCount() const {
    return kaObjectRegistry::the().size();
}

std::size_t kaAnimationManager::getFieldCount() const {
    return kaObjectRegistry::the().fieldCount();
}

// Creation.

kaControlPoint2D* kaAnimationManager::createPoint2D(kaUID id) {
    return kaObjectStore::make<kaControlPoint2D>("Point", id, false);
}

kaControlPoint2D* kaAnimationManager::createPoint2D(float x, float y, kaUID id) {
    return kaObjectStore::make<kaControlPoint2D>(x, y, "Point", id, false);
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(kaUID id) {
    return kaObjectStore::make<kaAnimationCurve2D>("Curve", id);
}

kaAnimationUnit* kaAnimationManager::createUnit(kaUID id) {
    return createUnit("Block", id);
}

kaAnimationUnit* kaAnimationManager::createUnit(const std::string& name, kaUID id) {
    return kaObjectStore::make<kaAnimationUnit>(name, id);
}

kaAnimationStreak* kaAnimationManager::createStreak(kaUID id) {
    return createStreak("Track", id);
}

kaAnimationStreak* kaAnimationManager::createStreak(const std::string& name, kaUID id) {
    return kaObjectStore::make<kaAnimationStreak>(name, id);
}

kaAnimationStrip* kaAnimationManager::createStrip(kaUID id) {
    return createStrip("Clip", id);
}

kaAnimationStrip* kaAnimationManager::createStrip(const std::string& name, kaUID id) {
    return kaObjectStore::make<kaAnimationStrip>(name, id);
}

kaAnimationSequence* kaAnimationManager::createSequence(const std::string& name, kaUID id) {
    return kaObjectStore::make<kaAnimationSequence>(name, id);
}

kaAnimationField* kaAnimationManager::createField(kaUID id) {
    return kaFieldStore::make(id);
}

// Duplication.

kaControlPoint2D* kaAnimationManager::duplicatePoint2D(kaControlPoint2D* point) {
    return kaObjectStore::duplicate(point);
}

kaAnimationCurve2D* kaAnimationManager::duplicateCurve2D(kaAnimationCurve2D* curve) {
    return kaObjectStore::duplicate(curve);
}

kaAnimationUnit* kaAnimationManager::duplicateUnit(kaAnimationUnit* unit, bool attach) {
    kaAnimationUnit* copy = kaObjectStore::duplicate(unit);
    if (copy && attach)
        kaNodeFields::list(kaSceneNodes::find(unit->getNodeID()), copy);
    return copy;
}

kaAnimationStreak* kaAnimationManager::duplicateStreak(kaAnimationStreak* streak) {
    return kaObjectStore::duplicate(streak);
}

kaAnimationStrip* kaAnimationManager::duplicateStrip(kaAnimationStrip* strip) {
    return kaObjectStore::duplicate(strip);
}

kaAnimationSequence* kaAnimationManager::duplicateSequence(kaAnimationSequence* sequence) {
    return kaObjectStore::duplicate(sequence);
}

kaAnimationField* kaAnimationManager::duplicateField(kaAnimationField* field) {
    return kaFieldStore::duplicate(field);
}

kaAnimationObject* kaAnimationManager::duplicateObject(kaAnimationObject* object) {
    return kaObjectStore::duplicateAny(object);
}

// Keys on curves.

namespace {

/// Destroys a key. @return whether the curve is still there: a key takes along what a host has listed below
/// it.
bool removeKey(kaAnimationCurve2D& curve, kaControlPoint2D& key) {
    const kaWeak<kaAnimationObject> alive(curve);
    curve.subObject(&key, true);
    return static_cast<bool>(alive);
}

} // namespace

bool kaAnimationManager::createCurvePoint(kaAnimationCurve2D* curve, float x, float y, bool snapX, bool snapY,
                                          bool replace) {
    if (!curve)
        return false;
    const float keyX = snapX ? snappedUnsigned(x) : x;
    const float keyY = snapY ? snappedUnsigned(y) : y;
    if (kaControlPoint2D* existing = curve->findPoint(keyX)) {
        if (!replace || !removeKey(*curve, *existing))
            return false;
    }
    curve->addObject(createPoint2D(keyX, keyY, 0));
    return true;
}

bool kaAnimationManager::createCurvePoint(kaAnimationCurve2D* curve, float frame, bool replace) {
    if (!curve || curve->getBegin() > frame || frame > curve->getEnd())
        return false;
    if (kaControlPoint2D* existing = curve->findPoint(frame)) {
        if (!replace || !removeKey(*curve, *existing))
            return false;
    }
    float value = 0.0F;
    if (!curve->checkInsertConstraints(frame) ||
        !kaAnimationController::the()->computeCurveValue(curve, frame, value))
        return false;
    curve->addObject(createPoint2D(frame, value, 0));
    return true;
}

// Destruction.

void kaAnimationManager::destroyPoint2D(kaControlPoint2D* point) {
    kaObjectStore::destroyKey(point);
}

void kaAnimationManager::destroyCurve2D(kaAnimationCurve2D* curve) {
    kaObjectStore::destroy(curve);
}

void kaAnimationManager::destroyUnit(kaAnimationUnit* unit) {
    kaObjectStore::destroy(unit);
}

void kaAnimationManager::destroyStreak(kaAnimationStreak* streak) {
    kaObjectStore::destroy(streak);
}

void kaAnimationManager::destroyStrip(kaAnimationStrip* strip) {
    kaObjectStore::destroy(strip);
}

void kaAnimationManager::destroySequence(kaAnimationSequence* sequence) {
    kaObjectStore::destroy(sequence);
}

void kaAnimationManager::destroyObject(kaAnimationObject* object) {
    kaObjectStore::destroy(object);
}

void kaAnimationManager::destroyField(kaAnimationField* field) {
    kaFieldStore::destroy(field);
}

/// One pass in ascending id order does what starting over after each destruction would: only objects that are
/// kept would be met again.
void kaAnimationManager::destroyAllObjects(bool all) {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    for (const auto& entry : registry.ordered()) {
        if (registry.size() < 2)
            return;
        kaAnimationObject* object = registry.find(entry.first);
        if (object && (all || !object->isInternal()))
            destroyObject(object);
    }
}

void kaAnimationManager::destroyAllFields() {
    std::vector<kaAnimationField*> fields;
    for (const auto& entry : kaObjectRegistry::the().fields())
        fields.push_back(entry.second);
    for (kaAnimationField* field : fields)
        destroyField(field);
}
