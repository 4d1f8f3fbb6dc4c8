#pragma once

#include <array>
#include <cstdint>
#include <kaAnimationTypes.h>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// What an element of an animation document stands for, with the document's own numbers.
enum class Kind : std::int8_t {
    Field = -1,
    None = 0, ///< a number that stands for nothing
    Point = 1,
    Curve = 2,
    Block = 3,
    Track = 4,
    Clip = 5,
    Sequence = 6
};

/// "curve"; "element" for None.
const char* kindName(Kind kind);

/// An animation document boiled down to what can only be judged once all of it is known: who refers to whom,
/// and the keys of curves. A few dozen bytes an element.
struct DocumentOutline {
    /// One element naming another.
    struct Reference {
        kaUID id = 0;           ///< as the file gives it
        std::uint32_t line = 0; ///< of the file, from 1
    };

    /// An element of the document, in the file's order.
    struct Element {
        kaUID id = 0;                     ///< 0: nobody can refer to it
        std::uint32_t line = 0;           ///< of the file, from 1
        Kind kind = Kind::None;           ///< what its tag stands for
        std::uint32_t point = 0;          ///< its place in `points`
        std::uint32_t firstReference = 0; ///< its first in `references`
        std::uint32_t references = 0;     ///< how many stand in `references` from there
        kaUID field = 0;                  ///< of a curve; 0 for none
    };

    /// A key as the file gives it.
    struct Point {
        std::array<float, 2> position{}; ///< frame and value
        std::array<float, 2> in{};       ///< the handle that arrives
        std::array<float, 2> out{};      ///< the handle that leaves
        unsigned int tangentType = 0;    ///< as the document numbers them
        unsigned int lengthMode = 0;     ///< as the document numbers them
    };

    std::vector<Element> elements;     ///< in the file's order
    std::vector<Reference> references; ///< of all elements, one element's in a row
    std::vector<Point> points;         ///< of all elements that are keys
};

/// Finds elements by id; of those that share an id the first.
class ElementsById {
  public:
    /// @param outline  outlives this.
    explicit ElementsById(const DocumentOutline& outline);

    /// @return null when there is none.
    const DocumentOutline::Element* find(kaUID id) const;
    /// Its index in the outline that it is of.
    std::size_t placeOf(const DocumentOutline::Element& element) const {
        return static_cast<std::size_t>(&element - _outline.elements.data());
    }

  private:
    const DocumentOutline& _outline;
    std::vector<std::uint32_t> _order; ///< places of the elements that have an id, by id, then by place
};

} // namespace ka::motion
#pragma GCC visibility pop
