#pragma once

#include "kaAnimationObject.h"

#include <OpenSG/OSGVector.h>

/// A key of a 2D curve: a point (x = frame, y = value) with an in and an out handle that shape the segments
/// before and after it. A handle is a `kaControlPoint2D` itself, flagged as a tangent, owned by its key and
/// not registered.
///
/// However a key is freed its handles go with it; a handle that is freed first is forgotten by its key.
class KA_ANIMATION_API kaControlPoint2D final : public kaAnimationObject {
  public:
    /// How `computeTangents` places the handles.
    enum TangentMode : unsigned int {
        TANGENT_COLLAPSED = 0, ///< both handles on the key
        TANGENT_BROKEN = 1,    ///< each handle towards its own neighbour; horizontal where there is none
        TANGENT_FLAT = 2,      ///< both handles horizontal
        TANGENT_SMOOTH = 4,    ///< both handles along the chord from the previous to the next key
        TANGENT_FORWARD = 8, ///< both handles along the line to the next key; horizontal where there is none
        TANGENT_USER = 16    ///< set by hand; `computeTangents` leaves them alone
    };

    /// How long the handles are.
    enum TangentLengthMode : unsigned int {
        LENGTH_THIRD = 4,  ///< a third of the horizontal distance between the neighbours
        LENGTH_FIXED = 32, ///< 2 units along the handle's direction
        LENGTH_HALF = 64   ///< half the horizontal distance to the neighbour on that side
    };

    static constexpr unsigned int _typeID = KA_TYPE_POINT; ///< What `getTypeID` answers.

    /// A key at (0, 0). Id 0 draws a fresh id. A key (`isTangent` false) makes its two handles, which draw
    /// their ids after it, in then out.
    kaControlPoint2D(const std::string& name, kaUID id, bool isTangent);
    /// The same at (x, y), frame and value.
    kaControlPoint2D(float x, float y, const std::string& name, kaUID id, bool isTangent);

    /// A copy with a fresh id, registered copies of the handles and the source's parent id if that parent is
    /// registered. The copy is never a tangent, whatever the source is.
    kaControlPoint2D(kaControlPoint2D& source);

    /// Frees the handles, registered or not.
    ~kaControlPoint2D();

    /// Keys stand side by side, so that walks and edits of long curves find them fast.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept; ///< Takes what `new` gave.

    void setBegin(float x) override;
    void setEnd(float x) override;
    void setMaximum(float y) override;
    void setMinimum(float y) override;
    void setSelected(bool selected) override; ///< Also deselects both handles.
    unsigned int getTypeID() const override { return _typeID; }
    // A key's extent is its position.
    float getBegin() const override { return _position[0]; }
    float getEnd() const override { return _position[0]; }
    float getMaximum() const override { return _position[1]; }
    float getMinimum() const override { return _position[1]; }

    /// Places both handles according to tangent type and length mode. Handles are written directly: no extent
    /// is recomputed and no parent told.
    /// @return false, with nothing changed, when a handle is missing, the parent is not a registered curve,
    /// the type is `TANGENT_USER`, the curve has no key at exactly this x, or the key has no neighbour.
    /// Edges: neighbours at the same x give infinite or undefined slopes, which are used as they come.
    /// Cost: O(log n) in the curve's keys while they are in order.
    bool computeTangents();

    /// @name Plain accessors
    /// @{

    /// Positions are (frame, value). Setting one moves neither handles nor neighbours and tells no parent.
    /// The handles belong to the key; null for a handle, and for one that was freed first.
    const osg::Pnt2f& getPosition() const { return _position; }
    void setPosition(const osg::Pnt2f& position);
    void setPosition(float x, float y) { setPosition(osg::Pnt2f(x, y)); }

    kaControlPoint2D* getInTangent() const { return _inTangent; }
    kaControlPoint2D* getOutTangent() const { return _outTangent; }

    /// Positions when the current drag began: written by the editor, read by `moveSelectedPoints`.
    osg::Pnt2f getSavedPosition() const { return saved().position; }
    void setSavedPosition(const osg::Pnt2f& position) { editSaved().position = position; }
    osg::Pnt2f getSavedInTangent() const { return saved().in; }
    void setSavedInTangent(const osg::Pnt2f& position) { editSaved().in = position; }
    osg::Pnt2f getSavedOutTangent() const { return saved().out; }
    void setSavedOutTangent(const osg::Pnt2f& position) { editSaved().out = position; }

    bool isTangent() const { return _isHandle; }
    void setTangent(bool isTangent) { _isHandle = isTangent; }
    unsigned int getTangentType() const { return _tangentType; }
    void setTangentType(unsigned int type) { _tangentType = type; } ///< Any value is stored.
    unsigned int getTangentLengthMode() const { return _tangentLengthMode; }
    /// Any value is stored.
    void setTangentLengthMode(unsigned int mode) { _tangentLengthMode = mode; }
    /// @}

    /// @cond INTERNAL
    /// The first part of the key's end: frees its handles, and takes a handle off its key. A second time
    /// nothing.
    void leaveHandles();
    /// @endcond

  private:
    /// Kept only by keys that an editor drags.
    struct Saved {
        osg::Pnt2f position{0.0F, 0.0F};
        osg::Pnt2f in{0.0F, 0.0F};
        osg::Pnt2f out{0.0F, 0.0F};
    };

    const Saved& saved() const;
    Saved& editSaved();
    void noteGeometry();
    void own(kaControlPoint2D*& slot, kaControlPoint2D* handle);
    void freeHandle(kaControlPoint2D*& slot);

    // What is read of a key's neighbours fills one cache line.
    osg::Pnt2f _position{0.0F, 0.0F};
    unsigned int _tangentType = TANGENT_SMOOTH;
    unsigned int _tangentLengthMode = LENGTH_HALF;
    kaControlPoint2D* _inTangent = nullptr;
    kaControlPoint2D* _outTangent = nullptr;
    kaControlPoint2D* _owner = nullptr; ///< the key whose handle this is
    std::unique_ptr<Saved> _saved;
};
