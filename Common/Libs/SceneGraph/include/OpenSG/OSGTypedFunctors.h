#pragma once

#include <OpenSG/OSGBaseTypes.h>
#include <functional>

/// @file
/// Functors for traversals, made from functions and from member functions. The arguments arrive by reference;
/// functions that take them by constant reference fit as well.

namespace osg {

template <class ResultT, class ArgT>
std::function<ResultT(ArgT&)> osgTypedFunctionFunctor1CPtrRef(ResultT (*function)(ArgT&)) {
    return function;
}
template <class ResultT, class ArgT>
std::function<ResultT(ArgT&)> osgTypedFunctionFunctor1CPtrRef(ResultT (*function)(const ArgT&)) {
    return function;
}

template <class ResultT, class ObjectT, class ArgT>
std::function<ResultT(ArgT&)> osgTypedMethodFunctor1ObjPtrCPtrRef(ObjectT* object,
                                                                  ResultT (ObjectT::*method)(ArgT&)) {
    return [object, method](ArgT& argument) { return (object->*method)(argument); };
}
template <class ResultT, class ObjectT, class ArgT>
std::function<ResultT(ArgT&)> osgTypedMethodFunctor1ObjPtrCPtrRef(ObjectT* object,
                                                                  ResultT (ObjectT::*method)(const ArgT&)) {
    return [object, method](ArgT& argument) { return (object->*method)(argument); };
}

template <class ResultT, class ArgT, class SecondT>
std::function<ResultT(ArgT&, SecondT)> osgTypedFunctionFunctor2CPtrRef(ResultT (*function)(ArgT&, SecondT)) {
    return function;
}
template <class ResultT, class ArgT, class SecondT>
std::function<ResultT(ArgT&, SecondT)> osgTypedFunctionFunctor2CPtrRef(ResultT (*function)(const ArgT&,
                                                                                           SecondT)) {
    return function;
}

template <class ResultT, class ObjectT, class ArgT, class SecondT>
std::function<ResultT(ArgT&, SecondT)>
osgTypedMethodFunctor2ObjPtrCPtrRef(ObjectT* object, ResultT (ObjectT::*method)(ArgT&, SecondT)) {
    return [object, method](ArgT& argument, SecondT second) { return (object->*method)(argument, second); };
}
template <class ResultT, class ObjectT, class ArgT, class SecondT>
std::function<ResultT(ArgT&, SecondT)>
osgTypedMethodFunctor2ObjPtrCPtrRef(ObjectT* object, ResultT (ObjectT::*method)(const ArgT&, SecondT)) {
    return [object, method](ArgT& argument, SecondT second) { return (object->*method)(argument, second); };
}

} // namespace osg
