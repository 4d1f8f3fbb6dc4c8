// The compiled half of the package: everything that has to touch the module's own objects. What is shape and
// comfort alone is Python and stands in the package.
#include "Bindings.h"
#include "Errors.h"

PYBIND11_MODULE(_core, module) {
    module.doc() = "What kaanimation is made of; import kaanimation instead.";
    ka::python::bindErrors(module);
    ka::python::bindObject(module);
    ka::python::bindContainers(module);
    ka::python::bindCurve(module);
    ka::python::bindScene(module);
    ka::python::bindReports(module);
    ka::python::bindProject(module);
    ka::python::bindArrays(module);
    ka::python::bindPlayer(module);
    ka::python::bindMessages(module);
    ka::python::bindEditing(module);
    ka::python::bindOperations(module);
    ka::python::bindExport(module);
    ka::python::bindMotionOperations(module);
    ka::python::bindClipOperations(module);
    ka::python::bindHost(module);
    ka::python::bindRegistry(module);
}
