// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <typeindex>
#include <utility>

/// \file
/// Objects that Python owns.
///
/// If pybind11 has no memory to register an object, it frees the object twice (constructors and
/// results that are a `unique_ptr`) or ends the program (other constructors).

namespace kelvora::python {

/// Gives an object to an instance of its class. Without memory for that, the object is freed.
template <class T>
void own(pybind11::detail::value_and_holder& instance, std::unique_ptr<T> object) {
    instance.value_ptr() = object.get();
    try {
        instance.type->init_instance(instance.inst, &object);
    } catch (...) {
        instance.value_ptr() = nullptr;
        throw;
    }
}

/// Defines the constructor of a class by a function that makes an object.
template <class T, class... Arguments, class... Extra>
void defineConstructor(pybind11::class_<T>& type, std::unique_ptr<T> (*make)(Arguments...),
                       const Extra&... extra) {
    const auto construct = [make](pybind11::detail::value_and_holder& instance,
                                  Arguments... arguments) {
        own(instance, make(std::forward<Arguments>(arguments)...));
    };
    type.def("__init__", construct, pybind11::detail::is_new_style_constructor(), extra...);
}

/// Returns an object to Python.
template <class T>
pybind11::object toPython(std::unique_ptr<T> object) {
    namespace py = pybind11;
    py::detail::type_info* const type = py::detail::get_type_info(std::type_index(typeid(T)), true);
    auto result = py::reinterpret_steal<py::object>(py::detail::make_new_instance(type->type));
    py::detail::value_and_holder instance =
        reinterpret_cast<py::detail::instance*>(result.ptr())->get_value_and_holder(type);
    own(instance, std::move(object));
    return result;
}

}  // namespace kelvora::python
