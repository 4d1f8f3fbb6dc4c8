#pragma once

#include <OpenSG/OSGNode.h>
#include <string>

namespace ka_test {

/// Everything that can be reached from a container, written down bit by bit for comparison: types, values,
/// names, attachments, who refers to whom. Containers are numbered in the order in which they are met, so
/// that equal scenes give equal texts although their ids differ. Goes over the fields on its own and shares
/// nothing with the writer of scene files. For small scenes: recursive.
std::string dump(const osg::FieldContainerPtr& container);

} // namespace ka_test
