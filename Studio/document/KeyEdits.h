#pragma once

#include "Document.h"

#include <kaControlPoint2D.h>
#include <optional>
#include <vector>

class kaAnimationCurve2D;

/// Edits of keys, each of them one step of the history. Keys are told by id; ids of no key, and keys on no
/// curve, are passed over. What cannot be done is refused with nothing changed.
namespace ka::studio {

using Ids = std::vector<kaUID>;

/// The curve that a key stands on; null when there is none.
kaAnimationCurve2D* curveOf(kaUID key);
/// The curves that keys stand on, each once.
Ids curvesOf(const Ids& keys);
/// The frames that a key may stand at between its neighbours; infinite where it has none.
std::pair<float, float> freeSpan(const kaControlPoint2D& key);

/// A key on the curve itself, which keeps its value there, or with that value.
/// @return the key's id; 0 where the neighbours' handles forbid one, and where one stands already.
kaUID insertKey(Document& document, kaUID curve, float frame, std::optional<float> value = std::nullopt);
/// Curves that lose their last key stay.
bool deleteKeys(Document& document, const Ids& keys);
bool setTangentType(Document& document, const Ids& keys, kaControlPoint2D::TangentMode type);
bool setLengthMode(Document& document, const Ids& keys, kaControlPoint2D::TangentLengthMode mode);
/// Horizontal handles set by hand, of the length they have.
bool flattenHandles(Document& document, const Ids& keys);
/// Puts the handles of each key on one line through it, in the mean of their directions.
bool unifyHandles(Document& document, const Ids& keys);

/// Which number of a key is meant.
enum class KeyNumber { Frame, Value, InFrame, InValue, OutFrame, OutValue };
float numberOf(const kaControlPoint2D& key, KeyNumber number);
/// Gives each key the number that `change` makes of the one it has, where its neighbours let it.
/// @return whether any key changed.
bool changeNumber(Document& document, const Ids& keys, KeyNumber number,
                  const std::function<float(float)>& change);

/// Keys that were copied, apart from any document.
struct CopiedKeys {
    struct Key {
        osg::Pnt2f position, in, out;
        unsigned int tangentType, lengthMode;
    };
    struct Curve {
        kaUID curve; ///< where they came from
        std::vector<Key> keys;
    };
    std::vector<Curve> curves;
    bool isEmpty() const { return curves.empty(); }
};
CopiedKeys copyKeys(const Ids& keys);
/// Puts copied keys on their curves so that the first stands at `frame`; keys that stand there already give
/// way. With one copied curve and other `targets` they go on those instead. @return the new keys.
Ids pasteKeys(Document& document, const CopiedKeys& copied, float frame, const Ids& targets,
              const QString& name);

} // namespace ka::studio
