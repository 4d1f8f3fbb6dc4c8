#pragma once

#include <OpenSG/OSGNode.h>
#include <kaAnimationManager.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

namespace ka_plain {

kaAnimationManager& manager();
/// @throws KeyError.
kaAnimationObject& objectOf(kaUID id);
/// @throws KeyError.
osg::NodePtr nodeOf(kaUID id);

void bindReading(pybind11::module_& module);
void bindDoing(pybind11::module_& module);

} // namespace ka_plain
