#include "Run.h"
#include "kaAnimationField.h"

namespace ka_model {

namespace {

using std::to_string;

bool flag(const Step& step, unsigned int bit) {
    return (step.c >> (8 + bit)) % 2 != 0;
}

std::string yes(bool value) {
    return value ? "true" : "false";
}

std::string place(const Step& step) {
    return to_string(step.x) + ", " + to_string(step.y);
}

void setPoints(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    std::vector<Object*> points;
    std::vector<kaControlPoint2D*> actual;
    std::string names;
    for (unsigned int i = 0; i < step.c % 6; ++i) {
        Object* point = (step.b >> i) % 8 == 0 ? nullptr : run.ofType(step.b / 8 + i * 7 + step.c / 6, POINT);
        if (point && (run.world.reaches(*point, *curve) || !run.mayList(*curve, *point)))
            return run.skip("would bend the tree");
        points.push_back(point);
        actual.push_back(point ? run.realPoint(point) : nullptr);
        names += " " + Run::nameOf(point);
    }
    run.tell(Run::nameOf(curve) + ":" + names);
    run.world.setPoints(curve, points);
    run.realCurve(curve)->setPoints(actual);
}

void deletePoints(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    const bool selected = step.b % 4 != 0;
    const bool tellParent = flag(step, 0);
    const bool destroyIfEmpty = flag(step, 1);
    run.tell((selected ? "selected of " : "all of ") + Run::nameOf(curve) + ", tell " + yes(tellParent) +
             ", destroy if empty " + yes(destroyIfEmpty));
    kaAnimationCurve2D* actual = run.realCurve(curve);
    const Object* left = selected ? run.world.deleteSelectedPoints(curve, tellParent, destroyIfEmpty)
                                  : run.world.deletePoints(curve, tellParent, destroyIfEmpty);
    run.expectSame("what deleting returns", left,
                   selected ? actual->deleteSelectedPoints(tellParent, destroyIfEmpty)
                            : actual->deletePoints(tellParent, destroyIfEmpty));
}

unsigned int tangentType(unsigned int number) {
    static const unsigned int types[] = {0, 1, 2, 4, 8, 16, 3, 99};
    return types[number % 8];
}

void changeTangents(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    const unsigned int type = tangentType(step.b % 6);
    run.tell(Run::nameOf(curve) + " to type " + to_string(type));
    run.world.changeTangents(curve, type);
    run.realCurve(curve)->changeTangentsOfSelectedPoints(static_cast<kaControlPoint2D::TangentMode>(type));
}

void moveSelectedPoints(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    const bool snapX = flag(step, 0);
    const bool snapY = flag(step, 1);
    const bool tellParent = flag(step, 2);
    const bool fromSaved = flag(step, 3) && flag(step, 4);
    const Spot delta = {step.b % 2 == 0 ? step.x * 0.125F : step.x, step.y};
    run.tell(Run::nameOf(curve) + " by " + to_string(delta.x) + ", " + to_string(delta.y) + " snap " +
             yes(snapX) + " " + yes(snapY) + " tell " + yes(tellParent) + " from saved " + yes(fromSaved));
    run.world.moveSelectedPoints(curve, delta, snapX, snapY, tellParent, fromSaved);
    run.realCurve(curve)->moveSelectedPoints({delta.x, delta.y}, snapX, snapY, tellParent, fromSaved);
}

void moveSelectedPointsTo(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    const bool lockX = flag(step, 0);
    const bool lockY = flag(step, 1);
    const bool tellParent = flag(step, 2);
    run.tell(Run::nameOf(curve) + " to " + place(step) + " lock " + yes(lockX) + " " + yes(lockY) + " tell " +
             yes(tellParent));
    run.world.moveSelectedPointsTo(curve, {step.x, step.y}, lockX, lockY, tellParent);
    run.realCurve(curve)->moveSelectedPointsTo({step.x, step.y}, lockX, lockY, tellParent);
}

void createCurvePoint(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve || run.isCrowded())
        return run.skip("none");
    const bool snapX = flag(step, 0);
    const bool snapY = flag(step, 1);
    const bool replace = flag(step, 2);
    run.tell(Run::nameOf(curve) + " at " + place(step) + " snap " + yes(snapX) + " " + yes(snapY) +
             " replace " + yes(replace));
    const bool made = run.world.createCurvePoint(curve, {step.x, step.y}, snapX, snapY, replace);
    run.expect("what createCurvePoint returns", made,
               run.manager().createCurvePoint(run.realCurve(curve), step.x, step.y, snapX, snapY, replace));
}

void createCurvePointAtFrame(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve || run.isCrowded())
        return run.skip("none");
    const bool replace = flag(step, 0);
    run.tell(Run::nameOf(curve) + " at " + to_string(step.x) + " replace " + yes(replace));
    const bool made = run.world.createCurvePoint(curve, step.x, replace);
    run.expect("what createCurvePoint returns", made,
               run.manager().createCurvePoint(run.realCurve(curve), step.x, replace));
}

void selectSome(Run& run, const Step& step) {
    Object* curve = run.ofType(step.a, CURVE);
    if (!curve)
        return run.skip("none");
    run.tell("some keys of " + Run::nameOf(curve));
    unsigned int bits = step.b;
    for (Object* key : run.world.childrenOf(*curve)) {
        run.world.setSelected(key, bits % 2 != 0);
        run.real(key)->setSelected(bits % 2 != 0);
        bits /= 2;
    }
}

void placePoint(Run& run, const Step& step) {
    Object* point = run.ofType(step.a, POINT);
    if (!point)
        return run.skip("none");
    run.tell(Run::nameOf(point) + " at " + place(step));
    point->position = {step.x, step.y};
    run.realPoint(point)->setPosition(step.x, step.y);
}

void placeHandle(Run& run, const Step& step) {
    const Object* key = run.ofType(step.a, POINT);
    Object* handle = key ? (step.b % 2 == 0 ? key->in : key->out) : nullptr;
    if (!handle)
        return run.skip("none");
    run.tell((step.b % 2 == 0 ? "in of " : "out of ") + Run::nameOf(key) + " at " + place(step));
    handle->position = {step.x, step.y};
    run.realPoint(handle)->setPosition(step.x, step.y);
}

void saveForDrag(Run& run, const Step& step) {
    Object* key = run.ofType(step.a, POINT);
    if (!key)
        return run.skip("none");
    run.tell(Run::nameOf(key));
    key->savedPosition = key->position;
    key->savedIn = key->in ? key->in->position : Spot{step.x, step.y};
    key->savedOut = key->out ? key->out->position : Spot{step.y, step.x};
    run.realPoint(key)->setSavedPosition({key->savedPosition.x, key->savedPosition.y});
    run.realPoint(key)->setSavedInTangent({key->savedIn.x, key->savedIn.y});
    run.realPoint(key)->setSavedOutTangent({key->savedOut.x, key->savedOut.y});
}

void setTangentKind(Run& run, const Step& step) {
    static const unsigned int modes[] = {4, 32, 64, 64, 7};
    Object* key = run.ofType(step.a, POINT);
    if (!key)
        return run.skip("none");
    key->tangentType = tangentType(step.b);
    key->lengthMode = modes[step.c % 5];
    run.tell(Run::nameOf(key) + " type " + to_string(key->tangentType) + " mode " +
             to_string(key->lengthMode));
    run.realPoint(key)->setTangentType(key->tangentType);
    run.realPoint(key)->setTangentLengthMode(key->lengthMode);
}

void computeTangents(Run& run, const Step& step) {
    Object* key = run.ofType(step.a, POINT);
    if (!key)
        return run.skip("none");
    run.tell(Run::nameOf(key));
    const bool placed = run.world.computeTangents(key);
    run.expect("what computeTangents returns", placed, run.realPoint(key)->computeTangents());
}

} // namespace

std::vector<Edit> keyOperations() {
    return {
        {"setPoints", 5, setPoints, true},
        {"deletePoints", 3, deletePoints},
        {"changeTangents", 4, changeTangents},
        {"moveSelectedPoints", 10, moveSelectedPoints},
        {"moveSelectedPointsTo", 6, moveSelectedPointsTo},
        {"createCurvePoint", 10, createCurvePoint},
        {"createCurvePointAtFrame", 8, createCurvePointAtFrame},
        {"selectSome", 8, selectSome},
        {"placePoint", 8, placePoint},
        {"placeHandle", 8, placeHandle},
        {"saveForDrag", 5, saveForDrag},
        {"setTangentKind", 5, setTangentKind},
        {"computeTangents", 4, computeTangents},
    };
}

} // namespace ka_model
