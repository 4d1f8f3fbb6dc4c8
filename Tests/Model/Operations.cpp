#include "RegistryFixture.h"
#include "Run.h"
#include "TestScene.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform3D.h>
#include <algorithm>
#include <iterator>

namespace ka_model {

const std::vector<Edit>& operations() {
    static const std::vector<Edit> all = [] {
        std::vector<Edit> edits = treeOperations();
        for (const auto& more : {keyOperations(), hostOperations()})
            edits.insert(edits.end(), more.begin(), more.end());
        return edits;
    }();
    return all;
}

unsigned int pickOperation(unsigned int number) {
    unsigned int total = 0;
    for (const Edit& edit : operations())
        total += edit.weight;
    unsigned int rest = number % total;
    unsigned int index = 0;
    while (rest >= operations()[index].weight)
        rest -= operations()[index++].weight;
    return index;
}

// Three nodes with attachments of their own, two of one kind, and fields that name them.

Run::Run(bool tame) : _scene(std::make_unique<ka_test::TestScene>()), _tame(tame) {
    ka_test::emptyModule();
    world.generator = ka_test::ID_SEED;
    world.draw();
    _nodes = {_scene->addTransform("a"), _scene->addTransform("b"), _scene->add<osg::Group>("c")};
    for (const osg::NodePtr& node : _nodes) {
        kaAnimationUtils::createAnimationAttachment(node, false);
        const osg::NodeCorePtr core = node->getCore();
        Node model;
        model.id = node.getFieldContainerId();
        model.coreID = core.getFieldContainerId();
        model.coreGroup = core->getType().getGroupId();
        world.nodes.push_back(model);
    }
}

Run::~Run() {
    if (_fault.empty())
        freeEverything();
    ka_test::emptyModule();
}

/// What was made under an id that was taken, or lost its entry to another, the registry neither knows nor
/// frees; the model knows who is left. Handles go with their keys.
void Run::freeEverything() {
    while (const Object* left = pick(0, [](const Object& object) { return object.alive && !object.owner; })) {
        kaAnimationObject* actual = real(left);
        world.destroy(const_cast<Object*>(left));
        manager().destroyObject(actual);
    }
    for (const auto& field : world.everyField) {
        if (!field->alive)
            continue;
        world.destroyField(field.get());
        manager().destroyField(realField(field.get()));
    }
}

std::string Run::perform(const Step& step) {
    _story.clear();
    _fault.clear();
    const Edit& edit = operations()[step.operation % operations().size()];
    if (_tame && edit.bends)
        skip("not in a tame program");
    else
        edit.perform(*this, step);
    _story = std::string(edit.name) + " " + _story;
    matchNewcomers();
    if (_fault.empty())
        _fault = compare(step);
    return _fault.empty() ? checkInvariants() : _fault;
}

// Operands.

Object* Run::pick(unsigned int number, Filter filter) const {
    std::vector<Object*> fitting;
    std::copy_if(_alive.begin(), _alive.end(), std::back_inserter(fitting),
                 [filter](const Object* object) { return filter(*object); });
    return fitting.empty() ? nullptr : fitting[number % fitting.size()];
}

/// Handles that nobody registered are seldom what an operation is about.
Object* Run::any(unsigned int number) const {
    return number % 16 == 0 ? pick(number / 16, [](const Object&) { return true; })
                            : pick(number / 16, [](const Object& object) { return !object.isTangent; });
}

Object* Run::ofType(unsigned int number, Type type) const {
    switch (type) {
    case POINT:
        return number % 16 == 0 ? pick(number / 16, [](const Object& object) { return object.type == POINT; })
                                : pick(number / 16, [](const Object& object) {
                                      return object.type == POINT && !object.owner;
                                  });
    case CURVE:
        return pick(number, [](const Object& object) { return object.type == CURVE; });
    case UNIT:
        return pick(number, [](const Object& object) { return object.type == UNIT; });
    case STREAK:
        return pick(number, [](const Object& object) { return object.type == STREAK; });
    case STRIP:
        return pick(number, [](const Object& object) { return object.type == STRIP; });
    default:
        return pick(number, [](const Object& object) { return object.type == SEQUENCE; });
    }
}

Field* Run::pickField(unsigned int number) const {
    if (world.fields.empty())
        return nullptr;
    return std::next(world.fields.begin(), static_cast<std::ptrdiff_t>(number % world.fields.size()))->second;
}

// Who is who.

kaAnimationObject* Run::real(const Object* object) const {
    const auto found = _objects.find(object);
    return found == _objects.end() ? nullptr : found->second;
}

kaControlPoint2D* Run::realPoint(const Object* object) const {
    return static_cast<kaControlPoint2D*>(real(object));
}

kaAnimationCurve2D* Run::realCurve(const Object* object) const {
    return static_cast<kaAnimationCurve2D*>(real(object));
}

kaAnimationUnit* Run::realUnit(const Object* object) const {
    return static_cast<kaAnimationUnit*>(real(object));
}

kaAnimationStreak* Run::realTrack(const Object* object) const {
    return static_cast<kaAnimationStreak*>(real(object));
}

kaAnimationStrip* Run::realClip(const Object* object) const {
    return static_cast<kaAnimationStrip*>(real(object));
}

kaAnimationSequence* Run::realSequence(const Object* object) const {
    return static_cast<kaAnimationSequence*>(real(object));
}

kaAnimationField* Run::realField(const Field* field) const {
    const auto found = _fields.find(field);
    return found == _fields.end() ? nullptr : found->second;
}

osg::NodePtr Run::realNode(const Node& node) const {
    return _nodes[static_cast<std::size_t>(&node - world.nodes.data())];
}

void Run::matchHandles(Object* key) {
    const kaControlPoint2D* actual = realPoint(key);
    if (key->in && actual->getInTangent())
        match(key->in, actual->getInTangent());
    if (key->out && actual->getOutTangent())
        match(key->out, actual->getOutTangent());
}

void Run::match(Object* object, kaAnimationObject* actual) {
    if (!actual) {
        _fault = "nothing came of " + nameOf(object);
        return;
    }
    _objects[object] = actual;
    if (object->type == POINT)
        matchHandles(object);
}

void Run::match(Field* field, kaAnimationField* actual) {
    _fields[field] = actual;
}

/// Objects that the last step made find their counterparts by id; handles by their keys.
void Run::matchNewcomers() {
    for (; _seenObjects < world.everyObject.size(); ++_seenObjects) {
        Object* object = world.everyObject[_seenObjects].get();
        if (object->alive)
            _alive.push_back(object);
        if (!real(object) && world.find(object->id) == object && manager().getObject(object->id))
            match(object, manager().getObject(object->id));
    }
    for (const auto& entry : world.fields)
        if (!realField(entry.second))
            match(entry.second, manager().getField(entry.first));
    _alive.erase(
        std::remove_if(_alive.begin(), _alive.end(), [](const Object* object) { return !object->alive; }),
        _alive.end());
}

void Run::expectSame(const char* what, const Object* expected, const kaAnimationObject* actual) {
    const kaAnimationObject* wanted = expected ? real(expected) : nullptr;
    if (wanted != actual)
        _fault = std::string(what) + " differs: expected " + nameOf(expected) +
                 (actual ? ", got another" : ", got none");
}

std::string Run::nameOf(const Object* object) {
    static const char* const names[] = {"object", "key", "curve", "block", "track", "clip", "sequence"};
    return object ? (object->owner ? std::string("handle") : std::string(names[object->type])) + " " +
                        std::to_string(object->id)
                  : "none";
}

// What no rule covers.

bool Run::wouldBend(Id id, const Object& newcomer) const {
    return std::any_of(_alive.begin(), _alive.end(),
                       [&](const Object* lister) {
                           if (lister == &newcomer || !World::isChild(*lister, id))
                               return false;
                           return (lister->type == CURVE && newcomer.type != POINT) ||
                                  world.reaches(newcomer, *lister);
                       }) ||
           (newcomer.type != POINT && World::isChild(newcomer, id));
}

bool Run::mayList(const Object& container, const Object& object) const {
    const Object* namesake = world.find(object.id);
    return !namesake || namesake == &object ||
           ((container.type != CURVE || namesake->type == POINT) && namesake != &container &&
            !world.reaches(*namesake, container));
}

bool Run::wouldClose(const Object& container, const Object& object) const {
    const auto takes = [&](const Object& taker) {
        return (world.mayAdopt(taker, object) && world.reaches(object, taker)) || !mayList(taker, object);
    };
    const std::vector<Object*> children =
        container.type == STRIP ? world.childrenOf(container) : std::vector<Object*>();
    return takes(container) || std::any_of(children.begin(), children.end(), [&](const Object* child) {
               return child->type == STREAK && takes(*child);
           });
}

std::size_t Run::weightOf(const Object& object, int depth) const {
    std::size_t weight = 1;
    if (depth < 12)
        for (const Object* child : world.childrenOf(object))
            if (child != &object)
                weight += weightOf(*child, depth + 1);
    return weight;
}

} // namespace ka_model
