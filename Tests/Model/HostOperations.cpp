#include "Run.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationUnit.h"

#include <algorithm>

namespace ka_model {

namespace {

using std::to_string;
using Real = kaAnimationObject;

bool flag(const Step& step, unsigned int bit) {
    return (step.c >> (8 + bit)) % 2 != 0;
}

std::string yes(bool value) {
    return value ? "true" : "false";
}

/// An id that some object has, or one that perhaps none has.
Id someID(const Run& run, unsigned int number) {
    const Object* object = number % 4 == 0 ? nullptr : run.any(number / 4);
    return object ? object->id : 1 + number / 4 % 14;
}

// Ids.

void setID(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    const Id id = step.b % 16 == 0 ? 0 : someID(run, step.b / 16);
    if (!object || run.wouldBend(id, *object))
        return run.skip("none");
    run.tell(Run::nameOf(object) + " to " + to_string(id));
    run.world.setID(id, object);
    run.manager().setID(id, run.real(object));
    run.expect("the id", object->id, run.real(object)->getId());
}

void setFieldID(Run& run, const Step& step) {
    Field* field = run.pickField(step.a);
    if (!field)
        return run.skip("none");
    const Id id = step.c % 2 == 0 ? field->id : someID(run, step.b);
    run.tell("field " + to_string(field->id) + " to " + to_string(id));
    run.world.setID(id, field);
    run.manager().setID(id, run.realField(field));
    run.expect("the id", field->id, run.realField(field)->getId());
}

void destroyField(Run& run, const Step& step) {
    Field* field = run.pickField(step.a);
    if (!field)
        return run.skip("none");
    run.tell("field " + to_string(field->id));
    kaAnimationField* actual = run.realField(field);
    run.world.destroyField(field);
    run.manager().destroyField(actual);
}

/// What a host may write without the registry hearing of it.
void writeID(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    const Id id = someID(run, step.b);
    if (!object || step.c % 4 != 0)
        return run.skip("none");
    run.tell(Run::nameOf(object) + " is " + to_string(id) + " now");
    object->id = id;
    run.real(object)->setId(id);
}

void writeFieldID(Run& run, const Step& step) {
    Field* field = run.pickField(step.a);
    const Field* other = run.pickField(step.b / 2);
    if (!field)
        return run.skip("none");
    const Id id = step.b % 2 == 0 ? other->id : 1 + step.b / 2 % 14;
    run.tell("field " + to_string(field->id) + " is " + to_string(id) + " now");
    field->id = id;
    run.realField(field)->setId(id);
}

void writeParent(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const Id id = step.b % 3 == 0 ? 0 : someID(run, step.b / 3);
    run.tell(Run::nameOf(object) + " names " + to_string(id));
    object->parent = id;
    run.real(object)->setParent(id);
}

bool mayList(const Run& run, const Object& lister, Id id) {
    const Object* child = run.world.find(id);
    if (!child)
        return true;
    if (lister.type == CURVE && child->type != POINT)
        return false;
    return child == &lister ? lister.type == POINT : !run.world.reaches(*child, lister);
}

void writeChildren(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object || (object->type == POINT && step.c % 4 != 0))
        return run.skip("none");
    std::vector<Id> ids(object->children.begin(), object->children.end());
    for (unsigned int i = 0; i < 1 + step.b % 3; ++i) {
        const unsigned int number = step.b / 3 + i * 977;
        if (number % 3 == 0 && !ids.empty())
            ids.erase(ids.begin() + static_cast<std::ptrdiff_t>(number / 3 % ids.size()));
        else if (mayList(run, *object, someID(run, number / 3)))
            ids.insert(ids.begin() + static_cast<std::ptrdiff_t>(number / 7 % (ids.size() + 1)),
                       someID(run, number / 3));
    }
    std::string names;
    for (Id id : ids)
        names += " " + to_string(id);
    run.tell(Run::nameOf(object) + ":" + names);
    object->children.assign(ids.begin(), ids.end());
    run.real(object)->setChildIDs(ids);
}

void writeIDSets(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const Id id = someID(run, step.b);
    const bool curves = flag(step, 0);
    std::set<Id>& ids = curves ? object->curves : object->sequences;
    // Sets of curves that reach one another in a ring would be switched for ever.
    const Object* named = run.world.find(id);
    if (named && named != object && (named->curves.size() > 1 || named->type != (curves ? CURVE : SEQUENCE)))
        return run.skip("not now");
    if (ids.erase(id) == 0)
        ids.insert(id);
    run.tell(Run::nameOf(object) + (curves ? " curve " : " sequence ") + to_string(id));
    if (curves)
        run.real(object)->setCurveIDs(ids);
    else
        run.real(object)->setSequenceIDs(ids);
}

void writeExtent(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    Real* actual = run.real(object);
    static const char* const names[] = {"begin", "end", "maximum", "minimum"};
    run.tell(Run::nameOf(object) + " " + names[step.b % 4] + " " + to_string(step.x));
    switch (step.b % 4) {
    case 0:
        object->setBegin(step.x);
        return actual->setBegin(step.x);
    case 1:
        object->setEnd(step.x);
        return actual->setEnd(step.x);
    case 2:
        object->setMaximum(step.x);
        return actual->setMaximum(step.x);
    default:
        object->setMinimum(step.x);
        return actual->setMinimum(step.x);
    }
}

// Notices.

Operation operationOf(unsigned int number) {
    return number % 3 == 0 ? ADD : number % 3 == 1 ? SUB : MOVE;
}

Real::Operation realOperation(Operation operation) {
    return operation == ADD ? Real::ADD_OBJECT : operation == SUB ? Real::SUB_OBJECT : Real::MOVE_OBJECT;
}

void updateBy(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    Object* child = step.b % 8 == 0 ? nullptr : run.any(step.b / 8);
    if (!object)
        return run.skip("none");
    const Operation operation = operationOf(step.c);
    const bool recursive = flag(step, 0);
    run.tell(Run::nameOf(object) + " by " + Run::nameOf(child) + " operation " + to_string(operation) +
             " recursive " + yes(recursive));
    run.world.updateBy(object, child, operation, recursive);
    run.real(object)->updateBy(child ? run.real(child) : nullptr, realOperation(operation), recursive);
}

void updateAll(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    std::vector<Id> ids;
    for (unsigned int i = 0; i < step.b % 3; ++i)
        ids.push_back(someID(run, step.b / 3 + i * 31));
    const Operation operation = operationOf(step.c);
    const bool recursive = flag(step, 0);
    run.tell(Run::nameOf(object) + " by " + to_string(ids.size()) + " ids, operation " +
             to_string(operation) + " recursive " + yes(recursive));
    run.world.updateAll(object, ids, operation, recursive);
    run.real(object)->updateAll(ids, realOperation(operation), recursive);
}

void updateBounds(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object));
    run.world.updateBounds(object);
    run.real(object)->updateBounds();
}

// Fields and nodes.

void bindField(Run& run, const Step& step) {
    Field* field = run.pickField(step.a);
    if (!field)
        return run.skip("none");
    const Node& node = run.world.nodes[step.b % run.world.nodes.size()];
    static const char* const attributes[] = {"translationX", "translationY", "visible"};
    field->nodeID = flag(step, 0) ? node.id : 0;
    field->fcID = flag(step, 1) ? node.coreID : flag(step, 2) ? node.id : 0;
    field->attribute = attributes[step.c % 3];
    field->valuePos = step.c % 2;
    run.tell("field " + to_string(field->id) + " to node " + to_string(field->nodeID) + ", container " +
             to_string(field->fcID) + ", " + field->attribute);
    kaAnimationField* actual = run.realField(field);
    actual->nodeID = field->nodeID;
    actual->fcID = field->fcID;
    actual->attribute = field->attribute;
    actual->valuePos = field->valuePos;
}

void chooseField(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    Field* field = step.b % 8 == 0 ? nullptr : run.pickField(step.b / 8);
    if (!curve)
        return run.skip("none");
    curve->field = field ? field->id : 0;
    run.tell(Run::nameOf(curve) + " animates " + to_string(curve->field));
    run.realCurve(curve)->setAnimationField(field ? run.realField(field) : nullptr);
}

void writeNode(Run& run, const Step& step) {
    Object* block = run.ofType(step.a, UNIT);
    if (!block)
        return run.skip("none");
    block->nodeID = step.b % 4 == 3 ? 0 : run.world.nodes[step.b % 4].id;
    run.tell(Run::nameOf(block) + " on " + to_string(block->nodeID));
    run.realUnit(block)->setNodeID(block->nodeID);
}

// Copy and paste.

void copyOne(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object || run.isCrowded() || run.weightOf(*object) > 40)
        return run.skip("none");
    run.tell(Run::nameOf(object));
    Real* actual = run.real(object);
    const bool copied = run.world.copy(object);
    run.expect("what copy returns", copied, run.manager().copy(actual));
}

void copySeveral(Run& run, const Step& step) {
    if (run.isCrowded())
        return run.skip("not now");
    std::vector<Object*> list;
    std::vector<Real*> actual;
    std::string names;
    for (unsigned int i = 0; i < step.b % 4; ++i) {
        Object* object = (step.a >> i) % 5 == 0 ? nullptr : run.any(step.a / 5 + i * 13);
        if (object && run.weightOf(*object) > 20)
            continue;
        list.push_back(object);
        actual.push_back(object ? run.real(object) : nullptr);
        names += " " + Run::nameOf(object);
    }
    run.tell(names);
    const bool copied = run.world.copy(list);
    run.expect("what copy returns", copied, run.manager().copy(actual));
}

void clearCopyBuffer(Run& run, const Step& step) {
    const bool destroyThem = flag(step, 0);
    run.tell("destroy " + yes(destroyThem));
    run.world.clearCopyBuffer(destroyThem);
    run.manager().clearCopyBuffer(destroyThem);
}

void paste(Run& run, const Step& step) {
    Node& node = run.world.nodes[step.a % run.world.nodes.size()];
    const bool force = flag(step, 0);
    run.tell("on node " + to_string(node.id) + " force " + yes(force));
    const bool pasted = run.world.paste(&node, force);
    run.expect("what paste returns", pasted, run.manager().paste(run.realNode(node), force));
}

void queueToPlay(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const bool start = flag(step, 0);
    run.tell(Run::nameOf(object) + " start " + yes(start));
    kaAnimationController* controller = kaAnimationController::the();
    run.world.waiting.push_back(object);
    controller->addWaitingObject(run.real(object));
    if (!start)
        return;
    run.world.startWaiting();
    controller->enqueueWaitingObjects();
}

void jump(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const bool toEnd = flag(step, 0);
    run.tell(Run::nameOf(object) + " to its end " + yes(toEnd));
    run.world.jumpTo(object, toEnd ? object->end() : object->begin());
    if (toEnd)
        kaAnimationController::the()->gotoGlobalEnd(run.real(object));
    else
        kaAnimationController::the()->gotoGlobalBegin(run.real(object));
}

} // namespace

std::vector<Edit> hostOperations() {
    return {
        {"setID", 6, setID, true},
        {"setFieldID", 2, setFieldID},
        {"destroyField", 1, destroyField},
        {"writeID", 2, writeID, true},
        {"writeFieldID", 1, writeFieldID, true},
        {"writeParent", 3, writeParent, true},
        {"writeChildren", 8, writeChildren, true},
        {"writeIDSets", 3, writeIDSets, true},
        {"writeExtent", 8, writeExtent},
        {"updateBy", 5, updateBy},
        {"updateAll", 3, updateAll},
        {"updateBounds", 4, updateBounds},
        {"bindField", 4, bindField},
        {"chooseField", 2, chooseField},
        {"writeNode", 2, writeNode},
        {"copyOne", 2, copyOne},
        {"copySeveral", 2, copySeveral},
        {"clearCopyBuffer", 1, clearCopyBuffer},
        {"paste", 3, paste},
        {"queueToPlay", 2, queueToPlay},
        {"jump", 2, jump},
    };
}

} // namespace ka_model
