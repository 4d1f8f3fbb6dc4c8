#include <algorithm>
#include <kaMotion/DocumentOutline.h>

namespace ka::motion {

const char* kindName(Kind kind) {
    switch (kind) {
    case Kind::Field:
        return "field";
    case Kind::Point:
        return "point";
    case Kind::Curve:
        return "curve";
    case Kind::Block:
        return "block";
    case Kind::Track:
        return "track";
    case Kind::Clip:
        return "clip";
    case Kind::Sequence:
        return "sequence";
    case Kind::None:
        break;
    }
    return "element";
}

ElementsById::ElementsById(const DocumentOutline& outline) : _outline(outline) {
    for (std::uint32_t i = 0; i < outline.elements.size(); ++i)
        if (outline.elements[i].id != 0)
            _order.push_back(i);
    std::stable_sort(_order.begin(), _order.end(), [&outline](std::uint32_t a, std::uint32_t b) {
        return outline.elements[a].id < outline.elements[b].id;
    });
}

const DocumentOutline::Element* ElementsById::find(kaUID id) const {
    const auto found =
        std::lower_bound(_order.begin(), _order.end(), id, [this](std::uint32_t place, kaUID wanted) {
            return _outline.elements[place].id < wanted;
        });
    const bool isThere = found != _order.end() && _outline.elements[*found].id == id;
    return isThere ? &_outline.elements[*found] : nullptr;
}

} // namespace ka::motion
