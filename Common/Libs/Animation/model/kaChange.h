#pragma once

/// What kind of thing of an object has changed, as its setters say it. Whoever keeps something made from an
/// object looks for the kinds that it read; a setter need not know who that is.
enum class kaChange : unsigned char {
    Span,      ///< begin or end
    Values,    ///< the bounds of the values
    Flags,     ///< how it is evaluated: active, repeating, motion blur, the field of a curve
    Selection, ///< selected or not
    Shape,     ///< of a curve or key: where keys and handles stand, and which there are
    Structure, ///< what is below it, or its id
    Gone       ///< it is about to be freed
};
