#include "RegistryDump.h"

#include "document/ObjectState.h"

#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaControlPoint2D.h>
#include <sstream>

namespace ka::studio::testing {

namespace {

void dump(std::ostream& out, const osg::Pnt2f& point) {
    out << ' ' << point[0] << ' ' << point[1];
}

void dump(std::ostream& out, const HandleState& handle) {
    out << ' ' << handle.id << ' ' << handle.parent << ' ' << handle.isThere << handle.isRegistered
        << handle.isTangent;
    dump(out, handle.position);
}

void dump(std::ostream& out, const KeyState& key) {
    out << "key " << key.id << ' ' << key.parent << ' ' << key.tangentType << ' ' << key.lengthMode << ' '
        << key.flags;
    dump(out, key.position);
    dump(out, key.in);
    dump(out, key.out);
    out << '\n';
}

void dump(std::ostream& out, const ObjectState& o) {
    out << "object " << o.type << ' ' << o.id << ' ' << o.parent << ' ' << o.name << ' ' << o.begin << ' '
        << o.end << ' ' << o.minimum << ' ' << o.maximum << ' ' << o.customBegin << ' ' << o.customEnd << ' '
        << o.customStart << ' ' << o.flags << ' ' << o.field << ' ' << o.color[0] << ' ' << o.color[1] << ' '
        << o.color[2] << ' ' << o.number << ' ' << o.armed << " children";
    for (const kaUID id : o.children)
        out << ' ' << id;
    out << " curves";
    for (const kaUID id : o.curves)
        out << ' ' << id;
    out << " sequences";
    for (const kaUID id : o.sequences)
        out << ' ' << id;
    out << " triggers";
    for (const auto& [trigger, connection] : o.triggers)
        out << ' ' << trigger << ':' << connection;
    out << '\n';
}

} // namespace

std::string registryDump() {
    const kaAnimationManager* manager = kaAnimationManager::the();
    std::ostringstream out;
    out << std::hexfloat;
    for (const auto& [id, object] : manager->getObjects())
        if (object->getTypeID() == KA_TYPE_POINT)
            dump(out, stateOf(static_cast<const kaControlPoint2D&>(*object)));
        else
            dump(out, stateOf(*object));
    for (const auto& [id, field] : manager->getFields())
        out << "field " << id << ' ' << field->fcID << ' ' << field->nodeID << ' ' << field->name << ' '
            << field->attribute << ' ' << field->valuePos << '\n';
    return out.str();
}

} // namespace ka::studio::testing
