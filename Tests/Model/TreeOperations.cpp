#include "CapturedOutput.h"
#include "Run.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"

namespace ka_model {

namespace {

using std::to_string;

bool flag(const Step& step, unsigned int bit) {
    return (step.c >> (8 + bit)) % 2 != 0;
}

std::string yes(bool value) {
    return value ? "true" : "false";
}

// Creation and duplication.

/// A newcomer whose given id is listed somewhere already may bend the tree.
bool mayCreate(Run& run, Id id, Type type) {
    Object probe;
    probe.type = type;
    if (run.isCrowded() || (id != 0 && run.wouldBend(id, probe))) {
        run.skip("not now");
        return false;
    }
    return true;
}

void createPoint(Run& run, const Step& step) {
    const Id id = run.isTame() ? 0 : Run::pickID(step.a);
    if (!mayCreate(run, id, POINT))
        return;
    run.tell("at " + to_string(step.x) + ", " + to_string(step.y) + " with id " + to_string(id));
    run.match(run.world.createPoint({step.x, step.y}, id), run.manager().createPoint2D(step.x, step.y, id));
}

void createCurve(Run& run, const Step& step) {
    const Id id = run.isTame() ? 0 : Run::pickID(step.a);
    if (!mayCreate(run, id, CURVE))
        return;
    run.tell("with id " + to_string(id));
    run.match(run.world.createCurve(id), run.manager().createCurve2D(id));
}

void createContainer(Run& run, const Step& step) {
    const Id id = run.isTame() ? 0 : Run::pickID(step.a);
    const Type type = step.b % 3 == 0 ? UNIT : step.b % 3 == 1 ? STREAK : STRIP;
    if (!mayCreate(run, id, type))
        return;
    Object* object = run.world.createContainer(type, id);
    run.tell("of type " + to_string(type) + " with id " + to_string(id));
    if (type == UNIT)
        run.match(object, run.manager().createUnit(id));
    else if (type == STREAK)
        run.match(object, run.manager().createStreak(id));
    else
        run.match(object, run.manager().createStrip(id));
}

void createSequence(Run& run, const Step& step) {
    const Id id = run.isTame() ? 0 : Run::pickID(step.a);
    if (!mayCreate(run, id, SEQUENCE))
        return;
    Object* object = run.world.createSequence("s", id);
    kaAnimationSequence* actual = run.manager().createSequence("s", id);
    run.match(object, actual);
    run.tell(to_string(step.x) + " to " + to_string(step.y) + " with id " + to_string(id));
    object->setBegin(step.x);
    object->setEnd(step.y);
    actual->setBegin(step.x);
    actual->setEnd(step.y);
}

void duplicate(Run& run, const Step& step) {
    Object* source = run.any(step.a);
    if (!source || run.isCrowded() || run.weightOf(*source) > 40)
        return run.skip("not now");
    run.tell(Run::nameOf(source));
    Object* copy = run.world.duplicate(source);
    kaAnimationObject* actual = run.manager().duplicateObject(run.real(source));
    if (copy)
        run.match(copy, actual);
    else
        run.expectSame("the copy", nullptr, actual);
}

void duplicateSequence(Run& run, const Step& step) {
    Object* source = run.ofType(step.a, SEQUENCE);
    if (!source || run.isCrowded())
        return run.skip("none");
    run.tell(Run::nameOf(source));
    run.match(run.world.duplicateSequence(source), run.manager().duplicateSequence(run.realSequence(source)));
}

// Destruction.

void destroyTyped(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object));
    kaAnimationObject* actual = run.real(object);
    if (object->type == POINT)
        run.world.destroyPoint(object);
    else
        run.world.destroy(object);
    switch (object->type) {
    case POINT:
        return run.manager().destroyPoint2D(static_cast<kaControlPoint2D*>(actual));
    case CURVE:
        return run.manager().destroyCurve2D(static_cast<kaAnimationCurve2D*>(actual));
    case UNIT:
        return run.manager().destroyUnit(static_cast<kaAnimationUnit*>(actual));
    case STREAK:
        return run.manager().destroyStreak(static_cast<kaAnimationStreak*>(actual));
    case STRIP:
        return run.manager().destroyStrip(static_cast<kaAnimationStrip*>(actual));
    case SEQUENCE:
        return run.manager().destroySequence(static_cast<kaAnimationSequence*>(actual));
    }
}

void destroyObject(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object));
    run.world.destroy(object);
    run.manager().destroyObject(run.real(object));
}

void destroyAllObjects(Run& run, const Step& step) {
    if (step.a % 4 != 0)
        return run.skip("not this time");
    const bool all = flag(step, 0);
    run.tell("all " + yes(all));
    run.world.destroyAllObjects(all);
    run.manager().destroyAllObjects(all);
}

// Containment.

bool isContainer(const Object& object) {
    return object.type >= CURVE && object.type <= STRIP;
}

/// Things that the container takes now and then, whatever the number says.
Object* pickFor(Run& run, const Object& container, unsigned int number) {
    if (number % 4 == 0)
        return run.any(number / 4);
    switch (container.type) {
    case CURVE:
        return run.ofType(number / 4, POINT);
    case UNIT:
        return run.ofType(number / 4, CURVE);
    case STRIP:
        return run.ofType(number / 4, number % 8 < 4 ? STREAK : UNIT);
    default:
        return run.ofType(number / 4, number % 8 < 4 ? UNIT : SEQUENCE);
    }
}

void addObject(Run& run, const Step& step) {
    Object* container = run.pick(step.a, isContainer);
    Object* object = container ? pickFor(run, *container, step.b) : nullptr;
    if (!object || run.wouldClose(*container, *object) || !run.world.isShallow(*container, *object) ||
        (run.isTame() && run.isListed(*object)))
        return run.skip("none");
    run.tell(Run::nameOf(object) + " to " + Run::nameOf(container));
    const Object* taken = run.world.addObject(container, object);
    kaAnimationObject* actual = run.real(container)->addObject(run.real(object));
    if (taken && !run.real(taken) && actual) // a track that the clip made
        run.match(const_cast<Object*>(taken), actual);
    run.expectSame("what addObject returns", taken, actual);
}

void subObject(Run& run, const Step& step) {
    Object* container = run.pick(step.a, isContainer);
    if (!container)
        return run.skip("none");
    const std::vector<Object*> children = run.world.childrenOf(*container);
    Object* object =
        step.b % 4 == 0 || children.empty() ? run.any(step.b / 4) : children[step.b / 4 % children.size()];
    if (!object)
        return run.skip("none");
    const bool destroyIt = flag(step, 0);
    run.tell(Run::nameOf(object) + " from " + Run::nameOf(container) + ", destroy " + yes(destroyIt));
    const Object* given = run.world.subObject(container, object, destroyIt);
    run.expectSame("what subObject returns", given,
                   run.real(container)->subObject(run.real(object), destroyIt));
}

void insertObject(Run& run, const Step& step) {
    Object* container = run.ofType(step.a / 2, step.a % 2 == 0 ? STREAK : STRIP);
    Object* object = container ? pickFor(run, *container, step.b) : nullptr;
    if (!object || run.isCrowded() || run.wouldClose(*container, *object) ||
        !run.world.isShallow(*container, *object) || (run.isTame() && run.isListed(*object)))
        return run.skip("none");
    run.tell(Run::nameOf(object) + " into " + Run::nameOf(container));
    if (container->type == STREAK) {
        const bool taken = run.world.insertIntoTrack(container, object);
        return run.expect("what insertObject returns", taken,
                          run.realTrack(container)->insertObject(run.real(object)));
    }
    Object* taken = run.world.insertIntoClip(container, object);
    kaAnimationStreak* actual = run.realClip(container)->insertObject(run.real(object));
    if (taken && !run.real(taken) && actual)
        run.match(taken, actual);
    run.expectSame("what insertObject returns", taken, actual);
}

void destroyEmptyTracks(Run& run, const Step& step) {
    Object* clip = run.ofType(step.a, STRIP);
    if (!clip)
        return run.skip("none");
    const bool atEnd = flag(step, 0);
    run.tell(Run::nameOf(clip) + (atEnd ? " at the end" : ""));
    if (atEnd) {
        run.world.destroyEmptyTracksAtEnd(clip);
        run.realClip(clip)->destroyEmptyStreaksAtEnd();
    } else {
        run.world.destroyEmptyTracks(clip);
        run.realClip(clip)->destroyEmptyStreaks();
    }
}

void moveToTrack(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    Object* track = run.ofType(step.b, STREAK);
    if (!object || !track || run.wouldClose(*track, *object) || !run.world.isShallow(*track, *object))
        return run.skip("none");
    run.tell(Run::nameOf(object) + " to " + Run::nameOf(track));
    const bool moved = run.world.moveToTrack(object, track);
    run.expect("what moveObjectToStreak returns", moved,
               run.manager().moveObjectToStreak(run.real(object), run.realTrack(track)));
}

void moveToClip(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    Object* clip = run.ofType(step.b, STRIP);
    const unsigned int number = step.c % 4;
    if (!object || !clip || run.isCrowded() || run.wouldClose(*clip, *object) ||
        !run.world.isShallow(*clip, *object) || !run.world.mayAdopt(*clip, Object()))
        return run.skip("none");
    run.tell(Run::nameOf(object) + " to " + Run::nameOf(clip) + ", track " + to_string(number));
    const bool moved = run.world.moveToTrack(object, clip, number);
    run.expect("what moveObjectToStreak returns", moved,
               run.manager().moveObjectToStreak(run.real(object), run.realClip(clip), number));
}

// Editing in time.

void move(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const bool tellParent = flag(step, 0);
    run.tell(Run::nameOf(object) + " by " + to_string(step.x) + ", tell " + yes(tellParent));
    run.world.move(object, step.x, tellParent);
    run.real(object)->move(step.x, tellParent);
}

void setRange(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    const bool tellParent = flag(step, 0);
    static const char* const names[] = {"moveBegin", "moveEnd", "trimBegin", "trimEnd"};
    const unsigned int which = step.b % 4;
    run.tell(std::string(names[which]) + " " + Run::nameOf(object) + " to " + to_string(step.x) + ", tell " +
             yes(tellParent));
    kaAnimationObject* actual = run.real(object);
    switch (which) {
    case 0:
        run.world.moveBegin(object, step.x, tellParent);
        return actual->moveBegin(step.x, tellParent);
    case 1:
        run.world.moveEnd(object, step.x, tellParent);
        return actual->moveEnd(step.x, tellParent);
    case 2:
        run.world.trimBegin(object, step.x, tellParent);
        return actual->trimBegin(step.x, tellParent);
    default:
        run.world.trimEnd(object, step.x, tellParent);
        return actual->trimEnd(step.x, tellParent);
    }
}

void flip(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object));
    run.world.flip(object);
    run.real(object)->flip();
}

void triggerLoop(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object) + " at " + to_string(step.x));
    run.world.triggerLoop(object, step.x);
    run.real(object)->triggerLoop(step.x);
}

void evaluate(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    run.tell(Run::nameOf(object) + " at " + to_string(step.x));
    const bool ended = run.world.evaluate(object, step.x);
    run.expect("what evaluateObject returns", ended,
               kaAnimationController::the()->evaluateObject(run.real(object), step.x, false));
}

void setFlag(Run& run, const Step& step) {
    Object* object = run.any(step.a);
    if (!object)
        return run.skip("none");
    kaAnimationObject* actual = run.real(object);
    const bool value = flag(step, 0);
    static const char* const names[] = {"active",   "repeating",   "motionBlur", "selected",   "locked",
                                        "internal", "reversePlay", "playing",    "customRange"};
    const unsigned int which = step.b % 9;
    run.tell(Run::nameOf(object) + " " + names[which] + " " + yes(value));
    switch (which) {
    case 0:
        run.world.setActive(object, value);
        return actual->setActive(value);
    case 1:
        run.world.setRepeating(object, value);
        return actual->setRepeating(value);
    case 2:
        run.world.setMotionBlur(object, value);
        return actual->setMotionBlur(value);
    case 3:
        run.world.setSelected(object, value);
        return actual->setSelected(value);
    case 4:
        run.world.setLocked(object, value);
        return actual->setLocked(value);
    case 5:
        object->internal = value;
        return actual->setInternal(value);
    case 6:
        object->reversePlay = value;
        return actual->setReversePlay(value);
    case 7:
        object->playing = value;
        return actual->setPlaying(value);
    default:
        object->useCustomRange = value;
        object->customBegin = step.x;
        object->customEnd = step.y;
        actual->setCustomBegin(step.x);
        actual->setCustomEnd(step.y);
        return actual->setUseCustomRange(value);
    }
}

} // namespace

std::vector<Edit> treeOperations() {
    return {
        {"createPoint", 14, createPoint},
        {"createCurve", 5, createCurve},
        {"createContainer", 8, createContainer},
        {"createSequence", 4, createSequence},
        {"duplicate", 4, duplicate},
        {"duplicateSequence", 1, duplicateSequence},
        {"destroyTyped", 4, destroyTyped},
        {"destroyObject", 4, destroyObject},
        {"destroyAllObjects", 1, destroyAllObjects},
        {"addObject", 30, addObject},
        {"subObject", 8, subObject},
        {"insertObject", 8, insertObject},
        {"destroyEmptyTracks", 2, destroyEmptyTracks},
        {"moveToTrack", 3, moveToTrack},
        {"moveToClip", 2, moveToClip},
        {"move", 8, move},
        {"setRange", 12, setRange},
        {"flip", 5, flip},
        {"triggerLoop", 2, triggerLoop},
        {"evaluate", 5, evaluate},
        {"setFlag", 10, setFlag},
    };
}

} // namespace ka_model
