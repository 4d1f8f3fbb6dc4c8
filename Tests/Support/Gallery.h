#pragma once

#include "Builders.h"

#include <string>
#include <vector>

namespace ka_test {

/// A key of the gallery: where it stands, and what it lacks.
struct GalleryKey {
    Key at;
    bool forgotten = false; ///< listed by the curve, unknown to the registry
    bool noIn = false;      ///< has no in handle (`at.in` stands on the key)
    bool noOut = false;     ///< has no out handle (`at.out` stands on the key)
};

/// A named curve as plain data. Keys stand in the order in which they are given to the curve.
struct GalleryCurve {
    std::string name;
    std::vector<GalleryKey> keys;
};

/// All named curves. What the name says is the situation that the curve stands for.
const std::vector<GalleryCurve>& gallery();

/// The curve of that name; fails the test program when there is none.
const GalleryCurve& galleryCurve(const std::string& name);

/// The registered curve.
kaAnimationCurve2D* build(const GalleryCurve& curve);

/// The keys that sampling goes by: the registered ones in order of frame, of equal frames the first.
std::vector<Key> sampledKeys(const GalleryCurve& curve);

} // namespace ka_test
