#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/Listener.h>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Where a scene and its animation go; an empty name leaves that part out.
struct SavedFiles {
    std::string scene;     ///< .osg, with every node and what hangs on it
    std::string animation; ///< .xml, the document with everything registered
};

/// @throws Failure (Usage) when a name is not that of a scene or a document, and when both lead to one file.
/// Call it before the work.
void checkNames(const SavedFiles& files);

/// Writes the scene and the animation document. Each file is replaced as a whole or not at all, and none
/// before all of them have been written in full. What a file could not keep of the rights of the one before
/// is a note of the listener. What stands in the document is then sampled against what is registered; the
/// files are in place when the listener hears of "checking".
/// @return a line for each curve that will not play from the document as it was meant to, or has no value
///         somewhere in its span: nothing to be silent about.
/// @throws Failure (OutputFailed); (Unreadable) when the scene holds what no file can; (Usage) when both lead
///         to one file by now.
[[nodiscard]] std::vector<std::string> save(const osg::NodePtr& root, const SavedFiles& files,
                                            Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
