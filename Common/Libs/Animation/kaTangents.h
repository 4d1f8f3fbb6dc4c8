#pragma once

#include "kaAnimationExport.h"

#include <OpenSG/OSGVector.h>

class kaControlPoint2D;

/// Where the two handles of a key go.
struct kaHandles {
    osg::Pnt2f in;  ///< the one before the key
    osg::Pnt2f out; ///< the one after it
};

/// Places the handles of `key` between its neighbours on the curve, of which at most one may be null, by the
/// key's tangent type and length mode; a type or mode that is none of the named ones collapses both handles
/// onto the key.
///
/// A third of a distance is the distance times the float 0.33333334, a half is taken in double. Directions
/// are angles (the arc tangent of a slope); neighbours at the key's own x give infinite or undefined slopes,
/// used as they come.
KA_ANIMATION_API kaHandles kaPlaceHandles(const kaControlPoint2D& key, const kaControlPoint2D* previous,
                                          const kaControlPoint2D* next);
