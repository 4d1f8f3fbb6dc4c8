#include "kaUnpackedKeys.h"

#include "kaChildList.h"
#include "kaControlPoint2D.h"

namespace {

/// Fewer are packed in less time than it takes to speak of.
constexpr std::size_t FewKeys = 64;
/// Keys that are packed in the time of one sample.
constexpr std::size_t KeysPerSample = 4;

const kaControlPoint2D& asKey(const kaAnimationObject& object) {
    return static_cast<const kaControlPoint2D&>(object);
}

} // namespace

kaSegment kaUnpackedKeys::between(const kaControlPoint2D& left, const kaControlPoint2D& right) {
    const kaControlPoint2D* outHandle = left.getOutTangent();
    const kaControlPoint2D* inHandle = right.getInTangent();
    const osg::Pnt2f& a = left.getPosition();
    const osg::Pnt2f& out = (outHandle ? outHandle : &left)->getPosition();
    const osg::Pnt2f& in = (inHandle ? inHandle : &right)->getPosition();
    const osg::Pnt2f& b = right.getPosition();
    return kaSegment(kaSegment::Points{a[0], a[1], out[0], out[1], in[0], in[1], b[0], b[1]});
}

bool kaUnpackedKeys::isFor(const kaChildList& keys) {
    return keys.size() >= FewKeys && keys.hasKeysOnly() && keys.isSorted();
}

kaUnpackedKeys::kaUnpackedKeys(const kaChildList& keys)
    : _keys(keys),
      _left(keys.size() / KeysPerSample),
      _begin(keys.first().getBegin()),
      _end(keys.last().getBegin()),
      _segment({}) {}

const kaSegment* kaUnpackedKeys::segmentAt(float frame) {
    if (!(frame >= _begin && frame < _end))
        return nullptr;
    if (!_segment.contains(frame)) {
        const kaChildList::Around around = _keys.around(frame);
        _segment = between(asKey(*(around.at ? around.at : around.before)), asKey(*around.after));
    }
    return &_segment;
}

bool kaUnpackedKeys::sampleOutside(float frame, float& value) const {
    const kaChildList::Around first = _keys.around(_begin);
    if (!hasSpan())
        return asKey(*first.at).getPosition()[1] != 0.0F;
    value = asKey(*(frame < _begin ? first.after : _keys.around(_end).at)).getPosition()[1];
    return true;
}
