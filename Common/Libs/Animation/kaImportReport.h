#pragma once

#include "kaAnimationExport.h"

#include <cstddef>
#include <string>
#include <vector>

/// What the import of an older scene made of it, and what it left out and why.
struct KA_ANIMATION_API kaImportReport {
    /// Why a container of the older scene became nothing.
    enum class Reason {
        NoCamera,      ///< animation of the old camera, and no camera was given
        NoNode,        ///< a curve that names no scene node that exists
        NoAttribute,   ///< a curve for an attribute that its node does not have
        NotAClip,      ///< an entry among nested clips that is none
        OnInnerNode,   ///< a clip listed on a node below the root
        Ring,          ///< a clip or track that contains itself
        TooDeep,       ///< nested deeper than objects may be
        TooManyRepeats ///< listed again and again, beyond what a scene may multiply to
    };

    /// What was not converted, and why.
    struct LeftOut {
        std::string kind; ///< "clip", "track", "block", "sequence" or "curve"
        std::string name; ///< as the older scene has it; of a curve what it animates; tracks have none
        Reason reason;    ///< see `text`
    };

    /// Entries that `leftOut` keeps at most; `leftOutCount` counts on.
    static constexpr std::size_t MaximumListed = 1000;

    std::size_t nodes = 0;        ///< nodes that carried animation of the older format
    std::size_t clips = 0;        ///< made, as are those that follow
    std::size_t tracks = 0;       ///< tracks
    std::size_t blocks = 0;       ///< on nodes and in tracks and clips
    std::size_t cameraBlocks = 0; ///< of the scene's old camera
    std::size_t sequences = 0;    ///< named events
    std::size_t curves = 0;       ///< curves with their keys
    std::size_t keys = 0;         ///< keys of all curves
    std::size_t leftOutCount = 0; ///< all that was left out, listed or not
    std::vector<LeftOut> leftOut; ///< in the order in which it was met

    /// Counts what is left out and lists it while there is room.
    void leaveOut(const std::string& kind, const std::string& name, Reason reason);

    /// The reason in words, for a line after the name.
    static const char* text(Reason reason);
};
