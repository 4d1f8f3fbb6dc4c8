#include "kaControlPoint2D.h"

#include "kaChange.h"
#include "kaChildList.h"
#include "kaKeyMemory.h"
#include "kaObjectStore.h"

#include <utility>

namespace {

/// A registered copy of a handle, none of null, that goes again unless a key takes it.
class CopiedHandle {
  public:
    explicit CopiedHandle(kaControlPoint2D* source) : _handle(kaObjectStore::duplicate(source)) {}
    ~CopiedHandle() { kaObjectStore::destroyKey(_handle); }
    CopiedHandle(const CopiedHandle&) = delete;
    CopiedHandle& operator=(const CopiedHandle&) = delete;

    kaControlPoint2D* release() { return std::exchange(_handle, nullptr); }

  private:
    kaControlPoint2D* _handle;
};

} // namespace

kaControlPoint2D::kaControlPoint2D(const std::string& name, kaUID id, bool isTangent)
    : kaControlPoint2D(0.0F, 0.0F, name, id, isTangent) {}

kaControlPoint2D::kaControlPoint2D(float x, float y, const std::string& name, kaUID id, bool isTangent)
    : _position(x, y) {
    _isHandle = isTangent;
    _id = id != 0 ? id : kaObjectRegistry::the().createUID();
    setName(name);
    if (!isTangent) {
        auto in = std::make_unique<kaControlPoint2D>(x, y, "InTangent", 0, true);
        auto out = std::make_unique<kaControlPoint2D>(x, y, "OutTangent", 0, true);
        own(_inTangent, in.release());
        own(_outTangent, out.release());
        _inTangent->setParent(_id);
        _outTangent->setParent(_id);
    }
    becomeOwnChild();
}

kaControlPoint2D::kaControlPoint2D(kaControlPoint2D& source)
    : _position(source._position),
      _tangentType(source._tangentType),
      _tangentLengthMode(source._tangentLengthMode) {
    if (source._saved)
        _saved = std::make_unique<Saved>(*source._saved);
    _id = kaObjectRegistry::the().createUID();
    setName(source.getName());
    CopiedHandle in(source._inTangent);
    CopiedHandle out(source._outTangent);
    own(_inTangent, in.release());
    own(_outTangent, out.release());
    setParent(source.getParentObject() ? source.getParent() : 0);
    setSelected(source.isSelected());
    setLocked(source.isLocked());
    becomeOwnChild();
}

kaControlPoint2D::~kaControlPoint2D() {
    leaveHandles();
}

void kaControlPoint2D::leaveHandles() {
    if (_owner) {
        kaControlPoint2D*& slot = _owner->_inTangent == this ? _owner->_inTangent : _owner->_outTangent;
        slot = nullptr;
        _owner->noteChange(kaChange::Shape);
        _owner = nullptr;
    }
    freeHandle(_inTangent);
    freeHandle(_outTangent);
}

void* kaControlPoint2D::operator new(std::size_t /*size*/) {
    static_assert(sizeof(kaControlPoint2D) <= kaKeyMemory::BlockSize, "two cache lines");
    return kaKeyMemory::the().take();
}

void kaControlPoint2D::operator delete(void* memory) noexcept {
    if (memory)
        kaKeyMemory::the().giveBack(memory);
}

void kaControlPoint2D::own(kaControlPoint2D*& slot, kaControlPoint2D* handle) {
    slot = handle;
    if (handle)
        handle->_owner = this;
}

void kaControlPoint2D::freeHandle(kaControlPoint2D*& slot) {
    if (!slot)
        return;
    kaControlPoint2D* handle = slot;
    slot = nullptr;
    handle->_owner = nullptr;
    handle->setParent(0);
    delete handle;
}

const kaControlPoint2D::Saved& kaControlPoint2D::saved() const {
    static const Saved none;
    return _saved ? *_saved : none;
}

kaControlPoint2D::Saved& kaControlPoint2D::editSaved() {
    if (!_saved)
        _saved = std::make_unique<Saved>();
    return *_saved;
}

/// A handle's place matters to the curve of its key.
void kaControlPoint2D::noteGeometry() {
    noteChange(kaChange::Span);
    if (_owner)
        _owner->noteChange(kaChange::Shape);
}

void kaControlPoint2D::setPosition(const osg::Pnt2f& position) {
    _position = position;
    noteGeometry();
}

void kaControlPoint2D::setBegin(float x) {
    setPosition(x, _position[1]);
}

void kaControlPoint2D::setEnd(float x) {
    setPosition(x, _position[1]);
}

void kaControlPoint2D::setMaximum(float y) {
    setPosition(_position[0], y);
}

void kaControlPoint2D::setMinimum(float y) {
    setPosition(_position[0], y);
}

void kaControlPoint2D::setSelected(bool selected) {
    kaAnimationObject::setSelected(selected);
    for (kaControlPoint2D* handle : {_inTangent, _outTangent})
        if (handle && handle->isSelected())
            handle->setSelected(false);
}
