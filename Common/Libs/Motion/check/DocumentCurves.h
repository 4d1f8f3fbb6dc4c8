#pragma once

#include <kaControlPoint2D.h>
#include <kaMotion/DocumentOutline.h>
#include <kaMotion/PlainCurve.h>
#include <utility>
#include <vector>

namespace ka::motion {

/// Makes the keys of a document's curves as loading makes them: in ascending order, of those at one frame the
/// first listed, and handles that were not set by hand placed anew, whatever the file says of them.
class DocumentCurves {
  public:
    using Element = DocumentOutline::Element;

    /// Both outlive this.
    DocumentCurves(const DocumentOutline& outline, const ElementsById& byId)
        : _outline(outline), _byId(byId) {}

    /// Takes up a curve; what the members below say is of the one taken up last. Cost: O(n log n).
    void set(const Element& curve);

    const std::vector<PlainKey>& keys() const { return _keys; }
    /// The elements of the keys.
    const std::vector<const Element*>& points() const { return _points; }
    /// Of each key that does not count the one that does, then itself.
    const std::vector<std::pair<const Element*, const Element*>>& doubles() const { return _doubles; }

    const DocumentOutline::Point& pointOf(const Element* element) const {
        return _outline.points[element->point];
    }

  private:
    PlainKey place(std::size_t index);

    const DocumentOutline& _outline;
    const ElementsById& _byId;
    std::vector<const Element*> _points;
    std::vector<std::pair<const Element*, const Element*>> _doubles;
    std::vector<PlainKey> _keys;
    // Where handles are placed, by the module's own rules. Handles have no handles of their own, and an id of
    // their own draws none.
    kaControlPoint2D _key{0.0F, 0.0F, "", 1, true};
    kaControlPoint2D _previous{0.0F, 0.0F, "", 1, true};
    kaControlPoint2D _next{0.0F, 0.0F, "", 1, true};
};

} // namespace ka::motion
