#pragma once

#include <OpenSG/OSGNode.h>
#include <kaMotion/ImportReport.h>
#include <kaMotion/Listener.h>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Whether the name is that of a scene in the scene format (".osg"), of an animation document (".xml").
bool isScene(const std::string& path);
bool isDocument(const std::string& path);

/// All bytes of a plain file of at most 1 GiB.
/// @throws Failure (Unreadable).
std::string contentsOf(const std::string& file);

/// Reads a scene. What the reader had to say goes into the notes, and what it could not keep counts as
/// findings.
/// @return a new node without name whose children are the file's top level. Nobody counts it yet.
/// @throws Failure (Unreadable).
osg::NodePtr readScene(const std::string& file, ImportReport& report);

/// The one node of the top level when there is exactly one, else the root itself: what hosts call the scene's
/// root.
osg::NodePtr topOf(const osg::NodePtr& root);

/// Adds an animation document to the registry; with a scene root set, its fields and blocks find their nodes.
/// Links that loading left out are notes of the listener.
/// @throws Failure (Unreadable).
void readDocument(const std::string& file, Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
