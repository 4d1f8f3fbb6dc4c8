#pragma once

namespace osg {

/// Set by osgInit. Strict handles need it: nothing is made, and nothing looked up, before.
extern bool isStarted;

/// Set while osgExit destroys what is left, whoever still refers to it.
extern bool isExiting;

} // namespace osg
