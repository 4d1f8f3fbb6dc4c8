#include "kaAnimationManager.h"

#include "kaAliveGuard.h"
#include "kaAnimationController.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaConnections.h"
#include "kaControlPoint2D.h"
#include "kaCopyBuffer.h"
#include "kaObjectRegistry.h"
#include "kaSceneSync.h"
#include "kaWatchedObjects.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <ctime>

// Ids, lookup, creation, duplication and destruction. The other operations stand in
// kaAnimationManagerScene.cpp,
// ...Sync.cpp, ...Connections.cpp, ...Documents.cpp and ...Import.cpp.

namespace {

bool managerAlive = false;

/// The scene node with a container id, null when there is none.
osg::NodePtr nodeWithID(osg::UInt32 id) {
    if (id == 0)
        return osg::NullFC;
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

/// A frame or value snapped as an unsigned whole number: negative ones wrap around.
float snappedUnsigned(float value) {
    return static_cast<float>(static_cast<unsigned int>(kaAnimationUtils::floatToInt(value)));
}

} // namespace

// Set-up.

kaAnimationManager* kaAnimationManager::the() {
    static kaAnimationManager instance;
    return &instance;
}

kaAnimationManager::kaAnimationManager()
    : _registry(std::make_unique<kaObjectRegistry>()),
      _sceneSync(std::make_unique<kaSceneSync>()),
      _connections(std::make_unique<kaConnections>()),
      _copyBuffer(std::make_unique<kaCopyBuffer>()) {
    managerAlive = true;
}

kaAnimationManager::~kaAnimationManager() {
    managerAlive = false;
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

void kaAnimationManager::forget(kaAnimationObject* object) {
    the()->_connections->forget(object);
    the()->_copyBuffer->forget(object);
    kaWatchedObjects::forget(object);
}

// Ids.

unsigned long long kaAnimationManager::random(unsigned long long seed) {
    static unsigned long long state = 0;
    if (seed != 0)
        state = seed;
    state = state * 1664525ULL + 1013904223ULL;
    return state;
}

unsigned long long kaAnimationManager::createUID() {
    unsigned long long id = random(0);
    while (id == 0 || !isIDUnique(id))
        id = random(0);
    return id;
}

bool kaAnimationManager::isIDUnique(unsigned long long id) const {
    return !_registry->find(id) && !_registry->findField(id);
}

// Lookup.

kaAnimationObject* kaAnimationManager::getObject(unsigned long long id) const {
    return _registry->find(id);
}

kaAnimationObject* kaAnimationManager::getObject(const std::string& name) const {
    return name.empty() ? nullptr : _registry->smallestID([&name](const kaAnimationObject& object) {
        return object.getName() == name;
    });
}

bool kaAnimationManager::isObjectNameUnique(const std::string& name) const {
    return !name.empty() && !getObject(name);
}

template <class Object>
Object* kaAnimationManager::typed(unsigned long long id) const {
    kaAnimationObject* object = getObject(id);
    return object && object->getTypeID() == Object::_typeID ? static_cast<Object*>(object) : nullptr;
}

kaControlPoint2D* kaAnimationManager::getPoint2D(unsigned long long id) const {
    return typed<kaControlPoint2D>(id);
}

kaAnimationCurve2D* kaAnimationManager::getCurve2D(unsigned long long id) const {
    return typed<kaAnimationCurve2D>(id);
}

kaAnimationUnit* kaAnimationManager::getUnit(unsigned long long id) const {
    return typed<kaAnimationUnit>(id);
}

kaAnimationStreak* kaAnimationManager::getStreak(unsigned long long id) const {
    return typed<kaAnimationStreak>(id);
}

kaAnimationStrip* kaAnimationManager::getStrip(unsigned long long id) const {
    return typed<kaAnimationStrip>(id);
}

kaAnimationSequence* kaAnimationManager::getSequence(unsigned long long id) const {
    return typed<kaAnimationSequence>(id);
}

kaAnimationField* kaAnimationManager::getField(unsigned long long id) const {
    return _registry->findField(id);
}

std::map<unsigned long long, kaAnimationObject*> kaAnimationManager::getObjects() const {
    const auto entries = _registry->ordered();
    return {entries.begin(), entries.end()};
}

std::map<unsigned long long, kaAnimationField*> kaAnimationManager::getFields() const {
    return _registry->fields();
}

// Creation.

template <class Object, class... Arguments>
Object* kaAnimationManager::registered(Arguments&&... arguments) {
    auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
    _registry->insert(*object);
    return object.release();
}

kaControlPoint2D* kaAnimationManager::createPoint2D(unsigned long long id) {
    return registered<kaControlPoint2D>("Point", id, false);
}

kaControlPoint2D* kaAnimationManager::createPoint2D(float x, float y, unsigned long long id) {
    return registered<kaControlPoint2D>(x, y, "Point", id, false);
}

kaAnimationCurve2D* kaAnimationManager::createCurve2D(unsigned long long id) {
    return registered<kaAnimationCurve2D>("Curve", id);
}

kaAnimationUnit* kaAnimationManager::createUnit(unsigned long long id) {
    return createUnit("Block", id);
}

kaAnimationUnit* kaAnimationManager::createUnit(const std::string& name, unsigned long long id) {
    return registered<kaAnimationUnit>(name, id);
}

kaAnimationStreak* kaAnimationManager::createStreak(unsigned long long id) {
    return createStreak("Track", id);
}

kaAnimationStreak* kaAnimationManager::createStreak(const std::string& name, unsigned long long id) {
    return registered<kaAnimationStreak>(name, id);
}

kaAnimationStrip* kaAnimationManager::createStrip(unsigned long long id) {
    return createStrip("Clip", id);
}

kaAnimationStrip* kaAnimationManager::createStrip(const std::string& name, unsigned long long id) {
    return registered<kaAnimationStrip>(name, id);
}

kaAnimationSequence* kaAnimationManager::createSequence(const std::string& name, unsigned long long id) {
    return registered<kaAnimationSequence>(name, id);
}

kaAnimationField* kaAnimationManager::createField(unsigned long long id) {
    auto field = std::make_unique<kaAnimationField>(id);
    _registry->insertField(*field);
    return field.release();
}

// Duplication.

template <class Object>
Object* kaAnimationManager::duplicated(Object* source) {
    return source ? registered<Object>(*source) : nullptr;
}

kaControlPoint2D* kaAnimationManager::duplicatePoint2D(kaControlPoint2D* point) {
    return duplicated(point);
}

kaAnimationCurve2D* kaAnimationManager::duplicateCurve2D(kaAnimationCurve2D* curve) {
    return duplicated(curve);
}

kaAnimationUnit* kaAnimationManager::duplicateUnit(kaAnimationUnit* unit, bool attach) {
    kaAnimationUnit* copy = duplicated(unit);
    if (copy && attach)
        kaAnimationUtils::addAnimationObject(nodeWithID(unit->getNodeID()), copy);
    return copy;
}

kaAnimationStreak* kaAnimationManager::duplicateStreak(kaAnimationStreak* streak) {
    return duplicated(streak);
}

kaAnimationStrip* kaAnimationManager::duplicateStrip(kaAnimationStrip* strip) {
    return duplicated(strip);
}

kaAnimationSequence* kaAnimationManager::duplicateSequence(kaAnimationSequence* sequence) {
    return duplicated(sequence);
}

kaAnimationField* kaAnimationManager::duplicateField(kaAnimationField* field) {
    if (!field)
        return nullptr;
    auto copy = std::make_unique<kaAnimationField>(*field);
    _registry->insertField(*copy);
    return copy.release();
}

kaAnimationObject* kaAnimationManager::duplicateObject(kaAnimationObject* object) {
    if (!object)
        return nullptr;
    switch (object->getTypeID()) {
    case KA_TYPE_POINT:
        return duplicatePoint2D(static_cast<kaControlPoint2D*>(object));
    case KA_TYPE_CURVE:
        return duplicateCurve2D(static_cast<kaAnimationCurve2D*>(object));
    case KA_TYPE_UNIT:
        return duplicateUnit(static_cast<kaAnimationUnit*>(object), false);
    case KA_TYPE_STREAK:
        return duplicateStreak(static_cast<kaAnimationStreak*>(object));
    case KA_TYPE_STRIP:
        return duplicateStrip(static_cast<kaAnimationStrip*>(object));
    default:
        return nullptr; // sequences are copied by duplicateSequence alone
    }
}

// Keys on curves.

namespace {

/// Destroys a key. @return whether the curve is still there: a key takes along what a host has listed below
/// it.
bool removeKey(kaAnimationCurve2D& curve, kaControlPoint2D& key) {
    const kaAliveGuard alive(curve);
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

/// Takes a curve or block off the list of its scene node.
void kaAnimationManager::leaveNode(kaAnimationObject* object) {
    osg::NodePtr node = osg::NullFC;
    if (object->getTypeID() == KA_TYPE_CURVE)
        node = static_cast<kaAnimationCurve2D*>(object)->getParentOSGNode();
    else if (object->getTypeID() == KA_TYPE_UNIT)
        node = nodeWithID(static_cast<kaAnimationUnit*>(object)->getNodeID());
    if (node != osg::NullFC)
        kaAnimationUtils::subAnimationObject(node, object);
}

void kaAnimationManager::leaveParent(kaAnimationObject* object) {
    kaAnimationObject* parent = object->getParentObject();
    if (parent && parent != object)
        parent->subObject(object, false);
}

template <class Object>
void kaAnimationManager::destroyAs(Object* object) {
    if (!object)
        return;
    leaveNode(object);
    leaveParent(object);
    _registry->remove(*object);
    delete object;
}

void kaAnimationManager::destroyPoint2D(kaControlPoint2D* point) {
    if (!point)
        return;
    kaAnimationObject* parent = point->getParentObject();
    if (parent && parent->getTypeID() == KA_TYPE_CURVE)
        parent->subObject(point, false);
    _registry->remove(*point);
    delete point;
}

void kaAnimationManager::destroyCurve2D(kaAnimationCurve2D* curve) {
    destroyAs(curve);
}

void kaAnimationManager::destroyUnit(kaAnimationUnit* unit) {
    destroyAs(unit);
}

void kaAnimationManager::destroyStreak(kaAnimationStreak* streak) {
    destroyAs(streak);
}

void kaAnimationManager::destroyStrip(kaAnimationStrip* strip) {
    destroyAs(strip);
}

void kaAnimationManager::destroySequence(kaAnimationSequence* sequence) {
    destroyAs(sequence);
}

/// The family has no virtual destructor, so the object is freed as what its type id says it is.
void kaAnimationManager::destroyObject(kaAnimationObject* object) {
    if (!object)
        return;
    switch (object->getTypeID()) {
    case KA_TYPE_POINT:
        destroyAs(static_cast<kaControlPoint2D*>(object));
        break;
    case KA_TYPE_CURVE:
        destroyAs(static_cast<kaAnimationCurve2D*>(object));
        break;
    case KA_TYPE_UNIT:
        destroyAs(static_cast<kaAnimationUnit*>(object));
        break;
    case KA_TYPE_STREAK:
        destroyAs(static_cast<kaAnimationStreak*>(object));
        break;
    case KA_TYPE_STRIP:
        destroyAs(static_cast<kaAnimationStrip*>(object));
        break;
    case KA_TYPE_SEQUENCE:
        destroyAs(static_cast<kaAnimationSequence*>(object));
        break;
    default:
        break; // the base itself is never made by the registry
    }
}

void kaAnimationManager::destroyField(kaAnimationField* field) {
    if (!field)
        return;
    _registry->removeField(*field);
    delete field;
}

/// One pass in ascending id order does what starting over after each destruction would: only objects that are
/// kept would be met again.
void kaAnimationManager::destroyAllObjects(bool all) {
    for (const auto& entry : _registry->ordered()) {
        if (_registry->size() < 2)
            return;
        kaAnimationObject* object = _registry->find(entry.first);
        if (object && (all || !object->isInternal()))
            destroyObject(object);
    }
}

void kaAnimationManager::destroyAllFields() {
    std::vector<kaAnimationField*> fields;
    for (const auto& entry : _registry->fields())
        fields.push_back(entry.second);
    for (kaAnimationField* field : fields)
        destroyField(field);
}
