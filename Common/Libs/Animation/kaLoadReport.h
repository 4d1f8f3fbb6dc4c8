#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"

#include <cstddef>
#include <vector>

/// What the last document that was loaded asked for and loading left out: containers that would be deeper
/// inside each other than objects may be, or would contain themselves. Everything else of it is there.
struct KA_ANIMATION_API kaLoadReport {
    /// Why a container did not take a child that its document gives it.
    enum class Reason {
        TooDeep,     ///< deeper than `KA_MAX_DEPTH` levels
        WithinItself ///< the container lies in the child, or is the child
    };

    /// A child that stays outside, with the ids that both have in the registry.
    struct Link {
        kaUID container; ///< the one that did not take the child
        kaUID child;     ///< the one that stays outside
        Reason reason;   ///< why
    };

    /// Entries that `leftOut` keeps at most; `leftOutCount` counts on.
    static constexpr std::size_t MaximumListed = 1000;

    /// That of the last `kaAnimationManager::loadAnimations` that was not refused. Valid until the next.
    static const kaLoadReport& last();

    std::vector<Link> leftOut;    ///< in the order of the document
    std::size_t leftOutCount = 0; ///< all of them, listed or not

    /// @cond INTERNAL
    static void begin();
    static void leaveOut(const Link& link);
    /// @endcond
};
