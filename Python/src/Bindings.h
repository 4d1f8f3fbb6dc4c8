#pragma once

#include <pybind11/pybind11.h>

namespace ka::python {

/// Each adds one group of classes and functions to the module; the order is that of `Module.cpp`, base
/// classes first.
/// @{
void bindObject(pybind11::module_& module);
void bindContainers(pybind11::module_& module);
void bindCurve(pybind11::module_& module);
void bindScene(pybind11::module_& module);
void bindProject(pybind11::module_& module);
void bindArrays(pybind11::module_& module);
void bindPlayer(pybind11::module_& module);
void bindMessages(pybind11::module_& module);
void bindEditing(pybind11::module_& module);
void bindOperations(pybind11::module_& module);
void bindExport(pybind11::module_& module);
void bindReports(pybind11::module_& module);
void bindMotionOperations(pybind11::module_& module);
void bindClipOperations(pybind11::module_& module);
void bindHost(pybind11::module_& module);
void bindRegistry(pybind11::module_& module);
/// @}

} // namespace ka::python
