#pragma once

#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGVector.h>
#include <cstdint>
#include <kaAnimationObject.h>
#include <set>
#include <string>
#include <vector>

class kaAnimationField;
class kaControlPoint2D;

namespace ka::studio {

/// A handle of a key. The module registers those of keys that it copied, and no others.
struct HandleState {
    kaUID id = 0, parent = 0;
    osg::Pnt2f position;
    bool isThere = false, isRegistered = false, isTangent = true;

    bool operator==(const HandleState& other) const;
};

/// Everything of a key but whether it is selected, which is the views' matter.
struct KeyState {
    kaUID id = 0, parent = 0;
    osg::Pnt2f position;
    HandleState in, out;
    std::uint32_t tangentType = 0, lengthMode = 0;
    std::uint16_t flags = 0; ///< as `ObjectState::flags`

    bool operator==(const KeyState& other) const;
};

/// Everything of an object that is no key: what its accessors give, and what its class adds.
struct ObjectState {
    kaUID id = 0, parent = 0;
    unsigned int type = KA_TYPE_OBJECT;
    std::string name;
    float begin = 0.0F, end = 0.0F, minimum = 0.0F, maximum = 0.0F;
    float customBegin = 0.0F, customEnd = 0.0F, customStart = 0.0F;
    std::uint16_t flags = 0; ///< one bit a flag, selection and playing left out
    std::vector<kaUID> children;
    std::set<kaUID> curves, sequences;
    kaAnimationObject::TriggerMap triggers;
    kaUID field = 0;         ///< of a curve
    osg::Color3f color;      ///< of a curve
    unsigned int number = 0; ///< node of a block, number of a track
    bool armed = true;       ///< of a sequence

    bool operator==(const ObjectState& other) const;
};

/// A field's record.
struct FieldState {
    kaUID id = 0, fcID = 0, nodeID = 0;
    std::string name, attribute;
    unsigned int valuePos = 0;
    bool dirty = true;
    float value = 0.0F; ///< As evaluated last: given to a field that is made, and no difference otherwise.

    bool operator==(const FieldState& other) const;
};

KeyState stateOf(const kaControlPoint2D& key);
ObjectState stateOf(const kaAnimationObject& object); ///< Of anything but a key.
FieldState stateOf(const kaAnimationField& field);

/// Makes the registered object that a state tells of, under its id, and without its state.
void create(const KeyState& state);
void create(const ObjectState& state);
void create(const FieldState& state);

/// Gives a registered object the state that it had. Nobody else changes: what stands above and below it has a
/// state of its own.
void apply(const KeyState& state, kaControlPoint2D& key);
void apply(const ObjectState& state, kaAnimationObject& object);
void apply(const FieldState& state, kaAnimationField& field);

} // namespace ka::studio
