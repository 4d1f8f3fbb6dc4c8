#include "KeySupport.h"

#include <algorithm>
#include <kaAnimationCurve2D.h>

namespace ka::studio {

namespace {

void shiftHandle(kaControlPoint2D* handle, float dx, float dy) {
    if (handle != nullptr)
        handle->setPosition(handle->getPosition()[0] + dx, handle->getPosition()[1] + dy);
}

/// A frame that the module lets the key stand at, as near to the one asked for as its neighbours allow: their
/// handles give way as the key comes, so that a step is followed by another.
void moveTowards(kaControlPoint2D& key, kaAnimationCurve2D& curve, float frame) {
    constexpr int Steps = 24; // halving a distance that often leaves nothing of it
    for (int i = 0; i < Steps && key.getBegin() != frame; ++i) {
        const float at = key.getBegin();
        float target = frame;
        for (int j = 0; j < Steps && !curve.checkMoveConstraints2(&key, target - at, false); ++j)
            target = at + (target - at) / 2;
        if (target == at || !curve.checkMoveConstraints2(&key, target - at, false))
            return;
        key.setPosition(target, key.getMaximum());
        shiftHandle(key.getInTangent(), target - at, 0.0F);
        shiftHandle(key.getOutTangent(), target - at, 0.0F);
        computeTangentsAround(key, curve);
    }
}

} // namespace

void takeInChange(kaAnimationCurve2D& curve) {
    curve.updateBy(&curve, kaAnimationObject::MOVE_OBJECT, true);
}

void computeTangentsAround(kaControlPoint2D& key, kaAnimationCurve2D& curve) {
    key.computeTangents();
    const auto [previous, next] = curve.getPreviousAndNextPoint(&key);
    if (previous != nullptr)
        previous->computeTangents();
    if (next != nullptr)
        next->computeTangents();
}

void fitHandlesAround(kaControlPoint2D& key, kaAnimationCurve2D& curve) {
    const auto reach = [](const kaControlPoint2D* handle, const kaControlPoint2D& own) {
        return handle != nullptr ? std::abs(handle->getBegin() - own.getBegin()) : 0.0F;
    };
    const auto shorten = [&reach](kaControlPoint2D* handle, const kaControlPoint2D& own, float room) {
        const float length = reach(handle, own);
        if (!(length > room))
            return;
        const osg::Pnt2f from = own.getPosition(), to = handle->getPosition();
        const float factor = room / length;
        handle->setPosition(from[0] + (to[0] - from[0]) * factor, from[1] + (to[1] - from[1]) * factor);
    };
    const auto fit = [&](kaControlPoint2D& from, kaControlPoint2D& to) {
        const float span = to.getBegin() - from.getBegin();
        if (!(reach(from.getOutTangent(), from) + reach(to.getInTangent(), to) >= span))
            return;
        shorten(from.getOutTangent(), from, span / 2);
        shorten(to.getInTangent(), to, span / 2);
    };
    const auto [previous, next] = curve.getPreviousAndNextPoint(&key);
    if (previous != nullptr)
        fit(*previous, key);
    if (next != nullptr)
        fit(key, *next);
}

void setNumber(kaControlPoint2D& key, kaAnimationCurve2D& curve, KeyNumber number, float value) {
    const auto [first, last] = freeSpan(key);
    kaControlPoint2D* in = key.getInTangent();
    kaControlPoint2D* out = key.getOutTangent();
    const osg::Pnt2f at = key.getPosition();
    if (number == KeyNumber::Frame) {
        moveTowards(key, curve, value);
        return;
    }
    if (number == KeyNumber::Value) {
        key.setPosition(at[0], value);
        shiftHandle(in, 0.0F, value - at[1]);
        shiftHandle(out, 0.0F, value - at[1]);
        computeTangentsAround(key, curve);
        return;
    }
    key.setTangentType(kaControlPoint2D::TANGENT_USER);
    if (number == KeyNumber::InFrame && in != nullptr)
        in->setPosition(std::clamp(value, first, at[0]), in->getPosition()[1]);
    if (number == KeyNumber::InValue && in != nullptr)
        in->setPosition(in->getPosition()[0], value);
    if (number == KeyNumber::OutFrame && out != nullptr)
        out->setPosition(std::clamp(value, at[0], last), out->getPosition()[1]);
    if (number == KeyNumber::OutValue && out != nullptr)
        out->setPosition(out->getPosition()[0], value);
}

} // namespace ka::studio
