#pragma once

#include "kaAnimationObject.h"
#include "kaControlPoint2D.h"

#include <OpenSG/OSGColor.h>
#include <OpenSG/OSGNode.h>
#include <cstdint>

class kaAnimationField;
class kaCurveView;

/// A function of time made of keys, bound to one animated scalar of the scene by the field's id.
///
/// Children are the keys, kept sorted by x; begin and end are the smallest and largest x, minimum and maximum
/// the smallest and largest y. Key lookups cost O(log n) while the keys are in order, which every operation
/// here leaves them in; a host that moves keys by their setters gets linear lookups until the next notice to
/// the curve.
class KA_ANIMATION_API kaAnimationCurve2D final : public kaAnimationObject {
  public:
    using PointPair = std::pair<kaControlPoint2D*, kaControlPoint2D*>; ///< The key before and the key after.

    static constexpr unsigned int _typeID = KA_TYPE_CURVE; ///< What `getTypeID` answers.

    /// A curve bound to a new empty field of its own. Id 0 draws a fresh id (before the field draws its own).
    kaAnimationCurve2D(const std::string& name, kaUID id);
    /// A curve bound to `field`; null binds none.
    kaAnimationCurve2D(kaAnimationField* field, const std::string& name, kaUID id);
    /// A deep copy with fresh ids that animates the same field; reverse play and pausing are not copied.
    kaAnimationCurve2D(kaAnimationCurve2D& source);
    ~kaAnimationCurve2D();

    /// Passes the flag to every key, then stores it; a curve without keys ignores the call.
    void setSelected(bool selected) override;
    /// Passes the flag to every key and then stores it as the curve's *selected* flag: the curve's own locked
    /// flag never changes. Hosts rely on it. A curve without keys ignores the call.
    void setLocked(bool locked) override;
    unsigned int getTypeID() const override { return _typeID; }

    /// Adds a key; a key at exactly the same x is removed and destroyed first. Recomputes the handles of the
    /// key and its two neighbours. Adding a key that the curve already holds keeps it.
    /// @return the key, or null for anything but a control point.
    kaAnimationObject* addObject(kaAnimationObject* point) override;
    /// Removes a key; the neighbours' handles stay.
    /// @return the key, or null when it was destroyed, is no control point or no key of this curve.
    kaAnimationObject* subObject(kaAnimationObject* point, bool destroy) override;

    void move(float offset, bool tellParent) override; ///< Every key and handle, in x.
    /// Stretches about the end; refused unless `begin` is less than the end by more than the tolerance. A
    /// curve whose span is zero is not stretched.
    void moveBegin(float begin, bool tellParent) override;
    /// Stretches about the begin; refused unless `end` is greater than the begin by more than the tolerance.
    void moveEnd(float end, bool tellParent) override;
    void trimBegin(float begin, bool tellParent) override; ///< Does nothing.
    void trimEnd(float end, bool tellParent) override;     ///< Does nothing.
    /// Mirrors keys and handles about the midpoint of the extent and swaps the handles; ancestors are not
    /// told.
    void flip() override;
    /// Fires the curve's own triggers; a curve whose set of curve ids is empty fires none.
    void triggerLoop(float frame) override;

    /// The registered keys by x; of keys at one x the first in child order. Keys whose x is not a number have
    /// no place in an order and are left out. Cost: O(n log n), a new map.
    std::map<float, kaControlPoint2D*> getPoints() const;
    /// The key at exactly `x`, the first in child order; null when there is none. Cost: O(log n).
    kaControlPoint2D* findPoint(float x) const;
    /// The key of this curve with that id; null when there is none.
    kaControlPoint2D* findPoint(kaUID id) const;
    /// The keys before and after `point` in child order; two nulls when it is no key of this curve.
    PointPair getPreviousAndNextPoint(kaControlPoint2D* point) const;
    /// The keys around `x`; a key at exactly x is left out, and a curve with only that key gives two nulls.
    PointPair getPreviousAndNextPoint(float x) const;
    /// The node whose container id the field holds as `nodeID`; null when there is none.
    osg::NodePtr getParentOSGNode() const;
    void printInfo() const; ///< To standard output.

    /// Binds to `field` and takes its default colour; null unbinds and keeps the colour.
    void setAnimationField(kaAnimationField* field);

    /// Replaces the keys. Nothing happens for an empty list or one whose first entry is null or no control
    /// point. The former keys are neither destroyed nor detached. Recomputes every key's handles. Cost: O(n
    /// log n).
    void setPoints(const std::vector<kaControlPoint2D*>& points);
    /// Removes and destroys the selected keys.
    /// @return the curve, or null when it was destroyed because `destroyIfEmpty` is set and no key remains
    /// (also when it had none to begin with).
    kaAnimationCurve2D* deleteSelectedPoints(bool tellParent, bool destroyIfEmpty);
    /// The same for all keys; a curve without keys is returned untouched.
    kaAnimationCurve2D* deletePoints(bool tellParent, bool destroyIfEmpty);
    /// Sets the type of every selected key and recomputes its handles; neither neighbours nor bounds follow.
    void changeTangentsOfSelectedPoints(kaControlPoint2D::TangentMode mode);

    /// Moves the selected keys by `delta`, each only where `checkMoveConstraints2` holds; with `fromSaved`
    /// from the positions saved when the drag began.
    void moveSelectedPoints(const osg::Vec2f& delta, bool snapX, bool snapY, bool tellParent, bool fromSaved);
    /// Moves every selected key to the same target; with both locks set nothing happens at all.
    void moveSelectedPointsTo(const osg::Pnt2f& target, bool lockX, bool lockY, bool tellParent);

    // Where keys may stand. Equality is allowed everywhere; a missing handle counts as standing on its key.

    /// Whether `point` may stand at `x` with its handles at `inX` and `outX`: the handles on their sides of
    /// the key, the key between its neighbours' facing handles, its handles between its neighbours. False for
    /// null; a point of no or another curve has no neighbours.
    bool checkMoveConstraints(kaControlPoint2D* point, float x, float inX, float outX) const;
    /// Whether `point` may move by `dx` with its handles, by the same rules between neighbours; with
    /// `fromSaved` from where the drag began. Where its handles stand beside the key is not looked at. False
    /// for null.
    bool checkMoveConstraints2(kaControlPoint2D* point, float dx, bool fromSaved) const;
    /// Whether a key may be inserted at `x`: between the facing handles of the keys around it.
    bool checkInsertConstraints(float x) const;

    /// @name Plain accessors
    /// @{

    /// The id of the animated field, registered or not; the colour that editors draw the curve in. Setting
    /// one tells nobody.
    kaUID getField() const { return _field; }
    void setField(kaUID field);
    const osg::Color3f& getColor() const { return _color; }
    void setColor(const osg::Color3f& color) { _color = color; }
    /// @}

    /// What stands around `x` in ascending order of x, of keys at one x the first in child order: whether
    /// there is a key at exactly `x`, and the keys at the next smaller and larger x.
    struct Neighbours {
        bool exists = false;                  ///< there is a key at exactly x
        kaControlPoint2D* previous = nullptr; ///< null when there is none
        kaControlPoint2D* next = nullptr;     ///< null when there is none
    };
    Neighbours neighboursByX(float x) const; ///< Cost: O(log n) while the keys are in order.

    /// @cond INTERNAL
    // The compact form that sampling reads, brought up to date with the keys.
    kaCurveView& view() const;
    /// @endcond

  private:
    friend class kaEvaluation;
    friend class kaEvaluationPass;
    friend class kaEvaluationPlan;

    void init(kaAnimationField* field, const std::string& name, kaUID id);
    std::vector<kaControlPoint2D*> points() const;
    std::vector<kaControlPoint2D*> selectedPoints() const;
    void computeTangentsAround(kaControlPoint2D* point);
    void dragPoint(kaControlPoint2D* point, const osg::Vec2f& delta, bool snapX, bool snapY, bool fromSaved);
    template <class Map>
    void mapX(Map&& map);
    static void swapHandles(kaControlPoint2D& point);
    bool destroyPoints(const std::vector<kaControlPoint2D*>& doomed);
    kaAnimationCurve2D* afterDeletion(bool tellParent, bool destroyIfEmpty);

    kaAnimationField* resolvedField() const;

    kaUID _field = 0;
    osg::Color3f _color{0.0F, 0.0F, 0.0F};
    mutable std::unique_ptr<kaCurveView> _view;
    mutable kaAnimationField* _resolvedField =
        nullptr; ///< of `_resolvedID`, while the registry's epoch stands
    mutable kaUID _resolvedID = 0;
    mutable std::uint64_t _resolvedEpoch = 0;
};
