#pragma once

/// @file
/// Namespace macros and the export macro of the scene graph library.

/// The library's namespace is `osg`; `OSG::Node` is another spelling of `osg::Node`. Because `OSG` is a
/// macro, no identifier of a client may be exactly that word.
#define OSG osg
#define OSG_BEGIN_NAMESPACE namespace osg {
#define OSG_END_NAMESPACE }
#define OSG_USING_NAMESPACE                                                                                  \
    namespace osg {}                                                                                         \
    using namespace osg;

/// Marks what a client of the shared library may see; everything else stays inside.
#if defined(KA_SCENEGRAPH_STATIC)
#define KA_SCENEGRAPH_API
#else
#define KA_SCENEGRAPH_API __attribute__((visibility("default")))
#endif
