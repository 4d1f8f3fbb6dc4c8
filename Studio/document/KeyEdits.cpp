#include "KeyEdits.h"

#include "KeySupport.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <limits>
#include <map>

namespace ka::studio {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Edits", text);
}

kaAnimationManager* manager() {
    return kaAnimationManager::the();
}

/// Does something to each key and makes one step of it.
template <class Change>
bool editKeys(Document& document, const QString& name, const Ids& keys, Change&& change) {
    return document.edit(name, {curvesOf(keys), {}}, [&] {
        for (const kaUID id : keys)
            if (kaControlPoint2D* key = manager()->getPoint2D(id))
                if (kaAnimationCurve2D* curve = curveOf(id))
                    change(*key, *curve);
        for (const kaUID id : curvesOf(keys))
            takeInChange(*manager()->getCurve2D(id));
    });
}

CopiedKeys::Key copyOf(const kaControlPoint2D& key) {
    const kaControlPoint2D* in = key.getInTangent();
    const kaControlPoint2D* out = key.getOutTangent();
    return {key.getPosition(), in != nullptr ? in->getPosition() : key.getPosition(),
            out != nullptr ? out->getPosition() : key.getPosition(), key.getTangentType(),
            key.getTangentLengthMode()};
}

/// @return the new key's id.
kaUID addCopy(kaAnimationCurve2D& curve, const CopiedKeys::Key& copied, float offset) {
    kaControlPoint2D* key = manager()->createPoint2D(copied.position[0] + offset, copied.position[1], 0);
    key->setTangentType(copied.tangentType);
    key->setTangentLengthMode(copied.lengthMode);
    key->getInTangent()->setPosition(copied.in[0] + offset, copied.in[1]);
    key->getOutTangent()->setPosition(copied.out[0] + offset, copied.out[1]);
    curve.addObject(key);
    return key->getId();
}

/// Moves a handle to a length and direction from its key.
void turnHandle(kaControlPoint2D* handle, const osg::Pnt2f& key, double dx, double dy) {
    if (handle != nullptr)
        handle->setPosition(key[0] + static_cast<float>(dx), key[1] + static_cast<float>(dy));
}

} // namespace

kaAnimationCurve2D* curveOf(kaUID key) {
    const kaControlPoint2D* point = manager()->getPoint2D(key);
    kaAnimationCurve2D* curve = point != nullptr ? manager()->getCurve2D(point->getParent()) : nullptr;
    return curve != nullptr && curve->hasChild(key) ? curve
                                                    : nullptr; // handles that are registered have parents too
}

Ids curvesOf(const Ids& keys) {
    Ids curves;
    for (const kaUID id : keys)
        if (const kaAnimationCurve2D* curve = curveOf(id))
            curves.push_back(curve->getId());
    std::sort(curves.begin(), curves.end());
    curves.erase(std::unique(curves.begin(), curves.end()), curves.end());
    return curves;
}

std::pair<float, float> freeSpan(const kaControlPoint2D& key) {
    constexpr float Infinite = std::numeric_limits<float>::infinity();
    const kaAnimationCurve2D* curve = manager()->getCurve2D(key.getParent());
    if (curve == nullptr)
        return {-Infinite, Infinite};
    const auto [previous, next] = curve->getPreviousAndNextPoint(manager()->getPoint2D(key.getId()));
    return {previous != nullptr ? previous->getBegin() : -Infinite,
            next != nullptr ? next->getBegin() : Infinite};
}

kaUID insertKey(Document& document, kaUID id, float frame, std::optional<float> value) {
    kaAnimationCurve2D* curve = manager()->getCurve2D(id);
    if (curve == nullptr || !std::isfinite(frame) || curve->findPoint(frame) != nullptr)
        return 0;
    kaUID made = 0;
    document.edit(tr("Insert key"), {{id}, {}}, [&] {
        if (value.has_value() ? !curve->checkInsertConstraints(frame)
                              : !manager()->createCurvePoint(curve, frame, false)) {
            return;
        }
        if (value.has_value() && !manager()->createCurvePoint(curve, frame, *value, false, false, false))
            return;
        if (const kaControlPoint2D* key = curve->findPoint(frame))
            made = key->getId();
    });
    return made;
}

bool deleteKeys(Document& document, const Ids& keys) {
    return document.edit(tr("Delete keys"), {curvesOf(keys), {}}, [&] {
        std::map<kaUID, Ids> byCurve;
        for (const kaUID id : keys)
            if (const kaAnimationCurve2D* curve = curveOf(id))
                byCurve[curve->getId()].push_back(id);
        for (const auto& [id, onCurve] : byCurve) {
            kaAnimationCurve2D* curve = manager()->getCurve2D(id);
            for (const kaUID key : onCurve)
                curve->subObject(manager()->getPoint2D(key), true);
            for (kaAnimationObject* key : curve->getObjects())
                static_cast<kaControlPoint2D*>(key)->computeTangents();
            takeInChange(*curve);
        }
    });
}

bool setTangentType(Document& document, const Ids& keys, kaControlPoint2D::TangentMode type) {
    return editKeys(document, tr("Tangent type"), keys, [type](kaControlPoint2D& key, kaAnimationCurve2D&) {
        key.setTangentType(type);
        key.computeTangents();
    });
}

bool setLengthMode(Document& document, const Ids& keys, kaControlPoint2D::TangentLengthMode mode) {
    return editKeys(document, tr("Handle length"), keys, [mode](kaControlPoint2D& key, kaAnimationCurve2D&) {
        key.setTangentLengthMode(mode);
        key.computeTangents();
    });
}

bool flattenHandles(Document& document, const Ids& keys) {
    return editKeys(document, tr("Flatten handles"), keys, [](kaControlPoint2D& key, kaAnimationCurve2D&) {
        key.setTangentType(kaControlPoint2D::TANGENT_USER);
        for (kaControlPoint2D* handle : {key.getInTangent(), key.getOutTangent()})
            if (handle != nullptr)
                handle->setPosition(handle->getPosition()[0], key.getPosition()[1]);
    });
}

bool unifyHandles(Document& document, const Ids& keys) {
    return editKeys(document, tr("Unify handles"), keys, [](kaControlPoint2D& key, kaAnimationCurve2D&) {
        const CopiedKeys::Key at = copyOf(key);
        const double inX = at.position[0] - at.in[0], inY = at.position[1] - at.in[1];
        const double outX = at.out[0] - at.position[0], outY = at.out[1] - at.position[1];
        const double inLength = std::hypot(inX, inY), outLength = std::hypot(outX, outY);
        if (inLength <= 0.0 || outLength <= 0.0)
            return;
        const double angle = (std::atan2(inY, inX) + std::atan2(outY, outX)) / 2;
        key.setTangentType(kaControlPoint2D::TANGENT_USER);
        turnHandle(key.getInTangent(), at.position, -inX, -std::tan(angle) * inX);
        turnHandle(key.getOutTangent(), at.position, outX, std::tan(angle) * outX);
    });
}

float numberOf(const kaControlPoint2D& key, KeyNumber number) {
    const CopiedKeys::Key at = copyOf(key);
    switch (number) {
    case KeyNumber::Frame:
        return at.position[0];
    case KeyNumber::Value:
        return at.position[1];
    case KeyNumber::InFrame:
        return at.in[0];
    case KeyNumber::InValue:
        return at.in[1];
    case KeyNumber::OutFrame:
        return at.out[0];
    default:
        return at.out[1];
    }
}

bool changeNumber(Document& document, const Ids& keys, KeyNumber number,
                  const std::function<float(float)>& change) {
    const auto apply = [&](kaControlPoint2D& key, kaAnimationCurve2D& curve) {
        const float was = numberOf(key, number);
        const float is = change(was);
        if (std::isfinite(is) && is != was)
            setNumber(key, curve, number, is);
    };
    return editKeys(document, number == KeyNumber::Frame ? tr("Set frame") : tr("Set value"), keys, apply);
}

CopiedKeys copyKeys(const Ids& keys) {
    std::map<kaUID, std::vector<CopiedKeys::Key>> byCurve;
    for (const kaUID id : keys)
        if (const kaAnimationCurve2D* curve = curveOf(id))
            byCurve[curve->getId()].push_back(copyOf(*manager()->getPoint2D(id)));
    CopiedKeys copied;
    const auto byFrame = [](const CopiedKeys::Key& a, const CopiedKeys::Key& b) {
        return a.position[0] < b.position[0];
    };
    for (auto& [curve, onCurve] : byCurve) {
        std::sort(onCurve.begin(), onCurve.end(), byFrame);
        copied.curves.push_back({curve, std::move(onCurve)});
    }
    return copied;
}

Ids pasteKeys(Document& document, const CopiedKeys& copied, float frame, const Ids& targets,
              const QString& name) {
    float first = std::numeric_limits<float>::infinity();
    for (const CopiedKeys::Curve& curve : copied.curves)
        first = std::min(first, curve.keys.front().position[0]);
    std::vector<std::pair<kaUID, const CopiedKeys::Curve*>> work;
    for (const CopiedKeys::Curve& curve : copied.curves)
        if (copied.curves.size() > 1 || targets.empty())
            work.emplace_back(curve.curve, &curve);
    if (copied.curves.size() == 1)
        for (const kaUID target : targets)
            work.emplace_back(target, &copied.curves.front());
    Scope scope;
    for (const auto& [target, source] : work)
        scope.objects.push_back(target);
    Ids made;
    document.edit(name, scope, [&] {
        for (const auto& [target, source] : work)
            if (kaAnimationCurve2D* curve = manager()->getCurve2D(target)) {
                const std::size_t before = made.size();
                for (const CopiedKeys::Key& key : source->keys)
                    made.push_back(addCopy(*curve, key, frame - first));
                for (std::size_t i = before; i < made.size(); ++i)
                    if (kaControlPoint2D* key = manager()->getPoint2D(made[i]))
                        fitHandlesAround(*key, *curve);
                takeInChange(*curve);
            }
    });
    return made;
}

} // namespace ka::studio
