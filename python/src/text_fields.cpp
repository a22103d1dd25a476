// SPDX-License-Identifier: MIT
#include "text_fields.hpp"

#include <fmt/format.h>

namespace kelvora::python {

namespace py = pybind11;

py::dtype withStrings(const py::dtype& fields) {
    py::list converted;
    for (const py::handle& name : fields.attr("names")) {
        py::object type = fields.attr("__getitem__")(name);
        const auto known = py::reinterpret_borrow<py::dtype>(type);
        if (known.kind() == 'S') {
            type = py::str(fmt::format("U{}", known.itemsize()));
        }
        converted.append(py::make_tuple(name, type));
    }
    return py::dtype::from_args(converted);
}

}  // namespace kelvora::python
