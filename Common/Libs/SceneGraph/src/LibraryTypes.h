#pragma once

namespace osg {

/// Declares every container type of the library and makes the prototypes.
void registerLibraryTypes();

} // namespace osg
