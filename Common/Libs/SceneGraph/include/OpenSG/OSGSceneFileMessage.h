#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <string>
#include <vector>

namespace osg {

/// One thing that reading or writing a scene file has to say.
struct SceneFileMessage {
    enum Severity {
        Warning, ///< nothing of the scene is missing
        Error,   ///< something of the scene could not be kept, the rest could
        Fatal    ///< the file was refused as a whole
    };

    Severity severity = Warning;
    std::string file; ///< empty for streams without a name
    UInt32 line = 0;  ///< 1-based; 0 when no line is to blame
    std::string text;

    /// "scene.osg:12: error: unknown type Foo"
    KA_SCENEGRAPH_API std::string toString() const;
};

using SceneFileMessages = std::vector<SceneFileMessage>;

} // namespace osg
