#pragma once

#include <OpenSG/OSGBaseTypes.h>

namespace osg {

/// Registers every type of the library and makes the prototypes, so that they take the first container ids.
/// Calling it is good manners, not a duty: the first use of FieldContainerFactory does the same. May be
/// called any number of times.
/// @return true.
KA_SCENEGRAPH_API bool osgInit(Int32 argc = 0, Char8** argv = nullptr, UInt16 major = 1, UInt16 minor = 8,
                               UInt16 release = 0);

/// Destroys every container that is left, the prototypes aside; handles to them become null. The library can
/// be used again afterwards, and ids go on where they were.
/// @return true.
KA_SCENEGRAPH_API bool osgExit();

} // namespace osg
