#include "RandomEdits.h"

#include "document/ContainerEdits.h"
#include "document/KeyDrag.h"
#include "document/KeyEdits.h"

#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio::testing {

kaUID RandomEdits::anyOf(unsigned int type) {
    const std::vector<kaAnimationObject*> objects = kaAnimationManager::the()->getObjects(type);
    return objects.empty()
               ? 0
               : objects[static_cast<std::size_t>(below(static_cast<int>(objects.size())))]->getId();
}

kaUID RandomEdits::anyLaidOut() {
    const unsigned int types[] = {KA_TYPE_UNIT, KA_TYPE_SEQUENCE, KA_TYPE_STRIP};
    return anyOf(types[below(3)]);
}

std::vector<kaUID> RandomEdits::someKeys() {
    std::vector<kaUID> keys;
    for (int i = below(4); i >= 0; --i)
        keys.push_back(anyOf(KA_TYPE_POINT));
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

void RandomEdits::editKeys() {
    const std::vector<kaUID> keys = someKeys();
    const float number = between(-20.0F, 80.0F);
    switch (below(9)) {
    case 0:
        insertKey(_document, anyOf(KA_TYPE_CURVE), number);
        break;
    case 1:
        insertKey(_document, anyOf(KA_TYPE_CURVE), number, between(-5.0F, 5.0F));
        break;
    case 2:
        deleteKeys(_document, {keys.front()});
        break;
    case 3:
        setTangentType(_document, keys,
                       static_cast<kaControlPoint2D::TangentMode>(below(2) == 0 ? 1 << below(5) : 0));
        break;
    case 4:
        setLengthMode(_document, keys, kaControlPoint2D::LENGTH_FIXED);
        break;
    case 5:
        flattenHandles(_document, keys);
        break;
    case 6:
        unifyHandles(_document, keys);
        break;
    case 7:
        changeNumber(_document, keys, static_cast<KeyNumber>(below(6)),
                     [=](float was) { return was + number / 8; });
        break;
    default:
        pasteKeys(_document, copyKeys(keys), number, {anyOf(KA_TYPE_CURVE)}, "Paste");
        break;
    }
}

void RandomEdits::dragKeys() {
    const std::vector<kaUID> keys = someKeys();
    const int kind = below(3);
    const bool keep = below(4) > 0;
    const auto finish = [&](auto& drag) {
        if (keep)
            drag.commit();
        else
            drag.cancel();
    };
    if (kind == 0) {
        KeyDrag drag(_document, keys);
        for (int i = 0; i < 3; ++i)
            drag.moveTo(between(-30.0F, 30.0F), between(-3.0F, 3.0F), below(2) == 0, below(2) == 0);
        finish(drag);
    } else if (kind == 1) {
        HandleDrag drag(_document, keys.front(), below(2) == 0 ? HandleDrag::Side::In : HandleDrag::Side::Out,
                        below(2) == 0);
        drag.moveTo(between(-10.0F, 90.0F), between(-3.0F, 3.0F));
        finish(drag);
    } else {
        KeyScale drag(_document, keys);
        drag.scale(between(0.0F, 60.0F), 0.0F, between(0.5F, 1.5F), between(0.5F, 2.0F));
        finish(drag);
    }
}

void RandomEdits::editSpans() {
    const kaUID object = anyLaidOut();
    const float frame = between(-50.0F, 200.0F);
    switch (below(7)) {
    case 0:
        moveObject(_document, object, between(-40.0F, 40.0F));
        break;
    case 1:
        moveObject(_document, object, between(-40.0F, 40.0F), anyOf(KA_TYPE_STREAK));
        break;
    case 2:
        stretchBegin(_document, object, frame);
        break;
    case 3:
        stretchEnd(_document, object, frame);
        break;
    case 4:
        trimBegin(_document, object, frame);
        break;
    case 5:
        trimEnd(_document, object, frame);
        break;
    default:
        flip(_document, object);
        break;
    }
}

void RandomEdits::editTree() {
    const std::size_t large = 4000; // objects; from here on nothing more is copied
    const bool mayGrow = kaAnimationManager::the()->getObjectCount() < large;
    switch (below(10)) {
    case 0:
        if (mayGrow)
            duplicate(_document, anyLaidOut());
        break;
    case 1:
        if (!mayGrow || below(4) == 0)
            remove(_document, below(8) == 0 ? anyOf(KA_TYPE_CURVE) : anyLaidOut());
        break;
    case 2:
        addTrack(_document, anyOf(KA_TYPE_STRIP));
        break;
    case 3:
        addClip(_document, "Clip");
        break;
    case 4:
        addSequence(_document, anyOf(KA_TYPE_STREAK), "Event", between(0.0F, 50.0F), between(50.0F, 90.0F));
        break;
    case 5:
        if (mayGrow)
            placeOnTrack(_document, anyLaidOut(), anyOf(KA_TYPE_STREAK), between(0.0F, 500.0F));
        break;
    case 6:
        rename(_document, anyLaidOut(), "Name " + std::to_string(below(100)));
        break;
    case 7:
        setCustomRange(_document, anyLaidOut(), between(0.0F, 20.0F), between(20.0F, 40.0F));
        break;
    case 8:
        connectObjects(_document, anyLaidOut(), kaAnimationManager::TriggerEnd, anyLaidOut(),
                       kaAnimationManager::ActionPlay);
        break;
    default:
        setFlag(_document, below(2) == 0 ? anyLaidOut() : anyOf(KA_TYPE_CURVE),
                static_cast<ObjectFlag>(below(4)), below(2) == 0);
        break;
    }
}

void RandomEdits::doOne() {
    switch (below(4)) {
    case 0:
        editKeys();
        break;
    case 1:
        dragKeys();
        break;
    case 2:
        editSpans();
        break;
    default:
        editTree();
        break;
    }
}

} // namespace ka::studio::testing
