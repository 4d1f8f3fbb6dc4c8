#include "operations/CurveEdit.h"
#include "operations/CurveReduction.h"
#include "operations/Parallel.h"
#include "operations/WorldBounds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUtils.h>
#include <kaMotion/CurveKind.h>
#include <kaMotion/Reduce.h>
#include <kaMotion/Text.h>
#include <map>

namespace ka::motion {

namespace {

double boundFor(CurveKind kind, const ReduceOptions& options) {
    switch (kind) {
    case CurveKind::Rotation:
        return options.rotation;
    case CurveKind::Translation:
        return options.translation;
    case CurveKind::Scale:
        return options.scale;
    case CurveKind::Other:
        break;
    }
    return options.value;
}

const char* wordFor(CurveKind kind) {
    constexpr std::array<const char*, 4> words{"rotation", "translation", "scale", "value"};
    return words[static_cast<std::size_t>(kind)];
}

const char* unitOf(CurveKind kind) {
    constexpr std::array<const char*, 4> units{"degrees", "units", "", ""};
    return units[static_cast<std::size_t>(kind)];
}

bool isConstant(const std::vector<PlainKey>& keys) {
    return keys.size() > 1 && std::all_of(keys.begin(), keys.end(), [&](const PlainKey& key) {
               return key.y == keys.front().y && key.inY == key.y && key.outY == key.y;
           });
}

class Reduction {
  public:
    Reduction(const CurveList& curves, const osg::NodePtr& root, const ReduceOptions& options,
              Listener& listener)
        : _root(root), _options(options), _listener(listener) {
        for (kaAnimationCurve2D* curve : curves)
            if (curve != nullptr) {
                _curves.push_back(curve);
                _sources.push_back(plainKeys(*curve));
                _kinds.push_back(curveKind(curve));
                _bounds.push_back(boundFor(_kinds.back(), options));
                _report.keysBefore += _sources.back().size();
            }
        _report.operation = "reduce";
        _report.isDry = options.isDry;
        _report.curves = _curves.size();
        _reduced.resize(_curves.size());
    }

    OperationReport run() {
        if (!(_options.world && _root != osg::NullFC ? reduceInWorld() : reduceAll())) {
            _report.isCancelled = true;
            return std::move(_report);
        }
        tell();
        finish();
        return std::move(_report);
    }

  private:
    void reduceOne(std::size_t number, const std::vector<double>& bounds, const GoesOn& goesOn) {
        CurveBound bound;
        bound.tolerance = bounds[number];
        bound.allowsCorners = _options.allowsCorners;
        bound.shortestHold = _options.shortestHold;
        _reduced[number] = reduceCurve(_sources[number], bound, goesOn);
    }

    bool reduceAll() {
        return doAll(_curves.size(), _listener, "reducing", [this](std::size_t number, const GoesOn& goesOn) {
            reduceOne(number, _bounds, goesOn);
        });
    }

    /// Clip by clip, because clips move the same nodes.
    bool reduceInWorld() {
        constexpr double loosest = 10.0;
        std::map<const kaAnimationObject*, std::vector<std::size_t>> groups;
        for (std::size_t i = 0; i < _curves.size(); ++i) {
            const kaAnimationObject* top = _curves[i];
            while (const kaAnimationObject* parent = top->getParentObject())
                top = parent;
            groups[top->getTypeID() == KA_TYPE_STRIP ? top : nullptr].push_back(i);
        }
        for (double& bound : _bounds)
            bound *= loosest;
        for (const auto& [top, members] : groups) {
            WorldBounds world(_root, pick(_curves, members), pick(_sources, members), pick(_bounds, members),
                              *_options.world);
            const auto reduceThese = [&, members = members](const std::vector<std::size_t>& which,
                                                            const std::vector<double>& bounds) {
                std::vector<double> all = _bounds;
                for (std::size_t i = 0; i < members.size(); ++i)
                    all[members[i]] = bounds[i];
                return doAll(which.size(), _listener, "reducing", [&](std::size_t i, const GoesOn& goesOn) {
                    reduceOne(members[which[i]], all, goesOn);
                });
            };
            const auto keysOf = [this, members = members](std::size_t i) -> const std::vector<PlainKey>& {
                return _reduced[members[i]].keys;
            };
            if (!world.find(reduceThese, keysOf))
                return false;
            tellWorld(world);
            for (std::size_t i = 0; i < members.size(); ++i)
                _bounds[members[i]] = world.bounds()[i];
        }
        return true;
    }

    template <class Item>
    static std::vector<Item> pick(const std::vector<Item>& all, const std::vector<std::size_t>& which) {
        std::vector<Item> picked;
        for (const std::size_t i : which)
            picked.push_back(all[i]);
        return picked;
    }

    void tellWorld(const WorldBounds& world) {
        const WorldBounds::Worst& worst = world.worst();
        _report.measures.push_back({"largest distance in the world", worst.distance, "units", worst.node,
                                    worst.frame, *_options.world});
        if (worst.distance > *_options.world)
            _report.faults.push_back(
                "no bounds of the single curves were found that keep every node within " +
                formatNumber(*_options.world, 4) + " units");
        if (world.step() > 0.25)
            _report.notes.push_back("positions in the world were compared every " +
                                    formatNumber(world.step(), 6) +
                                    " frames, because the motion is that long");
    }

    /// Where each kind of bound is tightest.
    void tell() {
        std::map<CurveKind, std::size_t> tightest;
        for (std::size_t i = 0; i < _curves.size(); ++i) {
            const ReducedCurve& reduced = _reduced[i];
            _report.keysAfter += reduced.keys.size();
            if (const auto [known, isNew] = tightest.emplace(_kinds[i], i);
                !isNew && reduced.worst > _reduced[known->second].worst)
                known->second = i;
        }
        for (const auto& [kind, i] : tightest)
            _report.measures.push_back({std::string("largest difference in ") + wordFor(kind),
                                        _reduced[i].worst, unitOf(kind), curveLabel(_curves[i]),
                                        static_cast<double>(_reduced[i].worstFrame),
                                        _options.world ? std::nullopt : std::optional<double>(_bounds[i])});
    }

    void finish() {
        std::vector<CurveEdit> edits;
        std::vector<kaAnimationCurve2D*> dropped;
        for (std::size_t i = 0; i < _curves.size(); ++i) {
            if (_options.dropsConstant && isDroppable(i)) {
                dropped.push_back(_curves[i]);
                _report.keysAfter -= _reduced[i].keys.size();
            } else if (!isSame(_sources[i], _reduced[i].keys)) {
                edits.push_back({_curves[i], std::move(_reduced[i].keys)});
            }
        }
        _report.changedCurves = edits.size() + dropped.size();
        if (!dropped.empty())
            _report.notes.push_back(counted(dropped.size(), "constant curve") +
                                    (_options.isDry ? " would be left out" : " left out"));
        if (_options.isDry)
            return;
        apply(edits);
        for (kaAnimationCurve2D* curve : dropped)
            kaAnimationManager::the()->destroyCurve2D(curve);
    }

    bool isDroppable(std::size_t number) const {
        kaAnimationManager* manager = kaAnimationManager::the();
        kaAnimationField* field = manager->getField(_curves[number]->getField());
        if (_root == osg::NullFC || field == nullptr || !isConstant(_sources[number]) ||
            manager->getReferencedCurves(field->getId()).size() != 1)
            return false;
        const auto held = static_cast<double>(kaAnimationUtils::getOSGFieldValue(field));
        return std::abs(held - static_cast<double>(_sources[number].front().y)) <=
               1e-6 + 1e-6 * std::abs(held);
    }

    const osg::NodePtr& _root;
    const ReduceOptions& _options;
    Listener& _listener;
    CurveList _curves;
    std::vector<std::vector<PlainKey>> _sources;
    std::vector<CurveKind> _kinds;
    std::vector<double> _bounds;
    std::vector<ReducedCurve> _reduced;
    OperationReport _report;
};

} // namespace

OperationReport reduce(const CurveList& curves, const osg::NodePtr& root, const ReduceOptions& options,
                       Listener& listener) {
    return Reduction(curves, root, options, listener).run();
}

} // namespace ka::motion
