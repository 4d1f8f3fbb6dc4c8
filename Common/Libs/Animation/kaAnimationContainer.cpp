#include "kaAnimationContainer.h"

#include "kaChildList.h"
#include "kaObjectClass.h"
#include "kaObjectStore.h"
#include "kaTreeWalk.h"
#include "kaWeak.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

/// Editing never leads out to the host, so all kinds of edits share one path.
kaWalkPath& editPath() {
    static kaWalkPath path;
    return path;
}

kaWalkPath& triggerPath() {
    static kaWalkPath path;
    return path;
}

/// Levels of containers, the stretched one included, whose children get both ends one after the other, by
/// calls that double with each level. Below, each is taken from its old span to the new one at once,
/// which comes to the same but for rounding and for spans that are turned round on the way.
constexpr std::size_t MaxStretchedByEnds = 6;

bool isContainer(const kaAnimationObject& object) {
    return kaObjectClass::of(object).isContainer();
}

kaAnimationContainer& asContainer(kaAnimationObject& object) {
    return static_cast<kaAnimationContainer&>(object);
}

/// From one span to another, in double.
struct Stretching {
    float apply(float frame) const {
        return static_cast<float>(static_cast<double>(toBegin) +
                                  (static_cast<double>(frame) - static_cast<double>(fromBegin)) * factor());
    }
    double factor() const {
        return (static_cast<double>(toEnd) - static_cast<double>(toBegin)) /
               (static_cast<double>(fromEnd) - static_cast<double>(fromBegin));
    }

    float fromBegin = 0.0F;
    float fromEnd = 0.0F;
    float toBegin = 0.0F;
    float toEnd = 0.0F;
};

/// First the end that the child makes room for: one that was moved beyond the other would be refused.
void stretchLeaf(kaAnimationObject& leaf, float begin, float end) {
    if (begin < leaf.getEnd()) {
        leaf.moveBegin(begin, false);
        leaf.moveEnd(end, false);
    } else {
        leaf.moveEnd(end, false);
        leaf.moveBegin(begin, false);
    }
}

} // namespace

kaAnimationContainer::kaAnimationContainer(const std::string& name, kaUID id) {
    _id = id != 0 ? id : kaObjectRegistry::the().createUID();
    setName(name);
}

kaAnimationContainer::kaAnimationContainer(const kaAnimationContainer& source)
    : kaAnimationContainer(source.getName(), 0) {
    kaAnimationObject::setBegin(source.getBegin());
    kaAnimationObject::setEnd(source.getEnd());
    setRangeBegin(source.getRangeBegin());
    setRangeEnd(source.getRangeEnd());
    kaAnimationObject::setActive(source.isActive());
    kaAnimationObject::setPlaying(source.isPlaying());
    kaAnimationObject::setRepeating(source.isRepeating());
    kaAnimationObject::setMotionBlur(source.isMotionBlur());
    _flipped = source.isFlipped();
    _trimmed = source.isTrimmed();
    setParent(source.getParentObject() ? source.getParent() : 0);
}

void kaAnimationContainer::addCopies(const kaAnimationContainer& source) {
    struct Level {
        kaAnimationContainer* copy = nullptr;
        UnfinishedCopy own; ///< the same where it was made on the way
        kaWalkChildren<> children;
    };
    kaTreeWalk<const kaAnimationContainer, Level> walk(editPath());
    if (!walk.enter(source))
        return;
    walk.level().copy = this;
    walk.level().children.list = source.getObjects();
    while (!walk.isDone()) {
        kaAnimationContainer& copy = *walk.level().copy;
        kaAnimationObject* child = walk.level().children.takeNext();
        if (!child) {
            UnfinishedCopy finished = std::move(walk.level().own);
            walk.leave();
            if (finished)
                walk.level().copy->addObject(registered(std::move(finished)));
        } else if (UnfinishedCopy below = copy.copyWithoutChildren(*child)) {
            if (walk.enter(asContainer(*child))) {
                walk.level().copy = below.get();
                walk.level().own = std::move(below);
                walk.level().children.list = child->getObjects();
            } else {
                copy.addObject(registered(std::move(below)));
            }
        } else {
            copy.addObject(copy.copyOf(*child));
        }
    }
}

kaAnimationContainer::UnfinishedCopy
kaAnimationContainer::copyWithoutChildren(kaAnimationObject& child) const {
    if (!copiesBelow(child))
        return nullptr;
    return UnfinishedCopy(static_cast<kaAnimationContainer*>(kaObjectClass::of(child).copyAlone(child)));
}

kaAnimationObject* kaAnimationContainer::registered(UnfinishedCopy copy) {
    kaObjectStore::enter(*copy);
    return copy.release();
}

void kaAnimationContainer::Discard::operator()(kaAnimationContainer* copy) const {
    kaObjectClass::of(*copy).free(*copy);
}

// Children.

kaAnimationObject* kaAnimationContainer::adopt(kaAnimationObject& child) {
    if (!mayAdopt(child))
        return nullptr;
    child.setParent(getId());
    children().append(child);
    updateBy(&child, ADD_OBJECT, true);
    return &child;
}

kaAnimationObject* kaAnimationContainer::release(kaAnimationObject& child, bool destroy) {
    if (!hasChildren() || !children().remove(child))
        return nullptr;
    child.setParent(0);
    updateBy(&child, SUB_OBJECT, true);
    if (!destroy)
        return &child;
    kaObjectStore::destroy(&child);
    return nullptr;
}

bool kaAnimationContainer::isLaidOut(const kaAnimationObject& object) {
    return kaObjectClass::of(object).isLaidOut;
}

bool kaAnimationContainer::copiesBelow(const kaAnimationObject& /*child*/) const {
    return false;
}

bool kaAnimationContainer::reaches(const kaAnimationObject& /*child*/) const {
    return true;
}

std::vector<kaAnimationObject*> kaAnimationContainer::reachedChildren() const {
    std::vector<kaAnimationObject*> reached = getObjects();
    reached.erase(std::remove_if(reached.begin(), reached.end(),
                                 [this](const kaAnimationObject* child) { return !reaches(*child); }),
                  reached.end());
    return reached;
}

// Flags.

/// `set` for every child that is no container, `store` for every container after its children.
template <class Set, class Store>
void kaAnimationContainer::setBelow(Set&& set, Store&& store) {
    kaTreeWalk<kaAnimationContainer, kaWalkChildren<>> walk(editPath());
    if (!walk.enter(*this)) {
        store(*this);
        return;
    }
    walk.level().list = getObjects();
    while (!walk.isDone()) {
        kaAnimationObject* child = walk.level().takeNext();
        if (!child) {
            store(walk.object());
            walk.leave();
        } else if (!isContainer(*child)) {
            set(*child);
        } else if (walk.enter(asContainer(*child))) {
            walk.level().list = child->getObjects();
        } else {
            store(asContainer(*child));
        }
    }
}

void kaAnimationContainer::setActive(bool active) {
    setBelow([active](kaAnimationObject& child) { child.setActive(active); },
             [active](kaAnimationContainer& container) { container.kaAnimationObject::setActive(active); });
}

void kaAnimationContainer::setRepeating(bool repeating) {
    setBelow([repeating](kaAnimationObject& child) { child.setRepeating(repeating); },
             [repeating](kaAnimationContainer& container) {
                 container.kaAnimationObject::setRepeating(repeating);
             });
}

void kaAnimationContainer::setMotionBlur(bool motionBlur) {
    setBelow([motionBlur](kaAnimationObject& child) { child.setMotionBlur(motionBlur); },
             [motionBlur](kaAnimationContainer& container) {
                 container.kaAnimationObject::setMotionBlur(motionBlur);
             });
}

// Editing in time.

void kaAnimationContainer::move(float offset, bool tellParent) {
    kaTreeWalk<kaAnimationContainer, kaWalkChildren<>> walk(editPath());
    const auto enter = [&walk](kaAnimationContainer& container) {
        if (container.hasChildren() && walk.enter(container))
            walk.level().list = container.reachedChildren();
    };
    enter(*this);
    while (!walk.isDone()) {
        kaAnimationContainer& container = walk.object();
        kaAnimationObject* child = walk.level().takeNext();
        if (!child) {
            walk.leave();
            container.children().recheckOrder();
            container.updateBy(&container, MOVE_OBJECT, tellParent && walk.isDone());
        } else if (isContainer(*child)) {
            enter(asContainer(*child));
        } else {
            child->move(offset, false);
        }
    }
}

template <class Edit>
void kaAnimationContainer::editChildren(Edit&& edit) {
    for (kaAnimationObject* child : reachedChildren())
        edit(*child);
    children().recheckOrder();
}

/// A factor that is no number, as a span of zero gives, would leave none to the children either.
void kaAnimationContainer::moveBegin(float begin, bool tellParent) {
    const kaWalkLevel step(editPath(), *this);
    if (!hasChildren() || !step)
        return;
    const float end = getEnd();
    const float factor = (end - begin) / (end - getBegin());
    const bool byEnds = editPath().size() < MaxStretchedByEnds;
    setBegin(begin);
    if (std::isfinite(factor)) {
        editChildren([end, factor, byEnds](kaAnimationObject& child) {
            const float childBegin = end - (end - child.getBegin()) * factor;
            const float childEnd = end - (end - child.getEnd()) * factor;
            if (!byEnds && isContainer(child)) {
                asContainer(child).stretch(childBegin, childEnd);
                return;
            }
            child.moveBegin(childBegin, false);
            child.moveEnd(childEnd, false);
        });
    }
    tellParentMoved(tellParent);
}

void kaAnimationContainer::moveEnd(float end, bool tellParent) {
    const kaWalkLevel step(editPath(), *this);
    if (!hasChildren() || !step)
        return;
    const float begin = getBegin();
    const float factor = (end - begin) / (getEnd() - begin);
    const bool byEnds = editPath().size() < MaxStretchedByEnds;
    setEnd(end);
    if (std::isfinite(factor)) {
        editChildren([begin, factor, byEnds](kaAnimationObject& child) {
            const float childBegin = (child.getBegin() - begin) * factor + begin;
            const float childEnd = (child.getEnd() - begin) * factor + begin;
            if (!byEnds && isContainer(child)) {
                asContainer(child).stretch(childBegin, childEnd);
                return;
            }
            child.moveEnd(childEnd, false);
            child.moveBegin(childBegin, false);
        });
    }
    tellParentMoved(tellParent);
}

/// Everything below goes the same way from the container's old span to [begin, end], each object once. As
/// with single ends, a block whose span would be none keeps its curves, and a span of zero is not stretched.
void kaAnimationContainer::stretch(float begin, float end) {
    struct Level {
        kaWalkChildren<> children;
        Stretching to;
    };
    kaTreeWalk<kaAnimationContainer, Level> walk(editPath());
    const auto enter = [&walk](kaAnimationContainer& container, float toBegin, float toEnd) {
        if (!container.hasChildren() || !walk.enter(container))
            return;
        walk.level().to = {container.getBegin(), container.getEnd(), toBegin, toEnd};
        container.setBegin(toBegin);
        container.setEnd(toEnd);
        const bool isBlock = kaObjectClass::of(container).level == kaObjectClass::Level::Block;
        const bool isRefused = isBlock && !beginsBefore(toBegin, toEnd);
        if (!isRefused && std::isfinite(walk.level().to.factor()))
            walk.level().children.list = container.reachedChildren();
    };
    enter(*this, begin, end);
    while (!walk.isDone()) {
        kaAnimationObject* child = walk.level().children.takeNext();
        if (!child) {
            walk.object().children().recheckOrder();
            walk.leave();
            continue;
        }
        const float childBegin = walk.level().to.apply(child->getBegin());
        const float childEnd = walk.level().to.apply(child->getEnd());
        if (isContainer(*child))
            enter(asContainer(*child), childBegin, childEnd);
        else
            stretchLeaf(*child, childBegin, childEnd);
    }
}

void kaAnimationContainer::trimBegin(float /*begin*/, bool /*tellParent*/) {}

void kaAnimationContainer::trimEnd(float /*end*/, bool /*tellParent*/) {}

void kaAnimationContainer::flip() {
    struct Level {
        kaWalkChildren<> children;
        float begin = 0.0F;
        float end = 0.0F;
        /// Takes a child that has been flipped itself to its mirror place.
        void mirror(kaAnimationObject& child) const {
            child.move((end - child.getEnd()) + begin - child.getBegin(), false);
        }
    };
    kaTreeWalk<kaAnimationContainer, Level> walk(editPath());
    const auto enter = [&walk](kaAnimationContainer& container) {
        if (!container.hasChildren() || !walk.enter(container))
            return false;
        walk.level().children.list = container.reachedChildren();
        walk.level().begin = container.getBegin();
        walk.level().end = container.getEnd();
        return true;
    };
    enter(*this);
    while (!walk.isDone()) {
        kaAnimationObject* child = walk.level().children.takeNext();
        if (!child) {
            kaAnimationContainer& container = walk.object();
            walk.leave();
            container.children().recheckOrder();
            container._flipped = !container._flipped;
            container.updateBy(&container, MOVE_OBJECT, false);
            if (!walk.isDone())
                walk.level().mirror(container);
        } else if (!isContainer(*child)) {
            child->flip();
            walk.level().mirror(*child);
        } else if (!enter(asContainer(*child))) {
            walk.level().mirror(*child);
        }
    }
}

// Triggers.

/// What fires may destroy anything: a container is not touched again once its own triggers have fired, and
/// its children are looked up before each turn.
void kaAnimationContainer::triggerLoop(float frame) {
    struct Level {
        kaWeakList<kaAnimationObject> children;
        std::size_t next = 0;
    };
    kaTreeWalk<kaAnimationContainer, Level> walk(triggerPath());
    const auto enter = [&walk, frame](kaAnimationContainer& container) {
        if (!container.hasChildren() || !walk.enter(container))
            return;
        const kaWeak<kaAnimationObject> self(container);
        container.fireTriggers(frame);
        if (self)
            walk.level().children = kaWeakList<kaAnimationObject>(container.reachedChildren());
    };
    enter(*this);
    while (!walk.isDone()) {
        Level& level = walk.level();
        kaAnimationObject* child = level.children.next(level.next);
        if (!child)
            walk.leave();
        else if (kaObjectClass::of(*child).level == kaObjectClass::Level::Container)
            enter(asContainer(*child));
        else
            child->triggerLoop(frame);
    }
}
