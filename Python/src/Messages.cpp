#include "Messages.h"

#include "Bindings.h"
#include "Call.h"

#include <algorithm>
#include <kaAnimationController.h>
#include <kaOpenSGUtils.h>
#include <memory>
#include <pybind11/stl.h>
#include <vector>

namespace py = pybind11;

namespace ka::python {

namespace {

/// A registration on the message bus that ends when it is dropped.
struct Listening {
    kaMessageListener handle;
    ~Listening();
};

std::vector<Listening*>& listenings() {
    static std::vector<Listening*> all;
    return all;
}

Listening::~Listening() {
    auto& all = listenings();
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
}

template <class... Types>
py::object valueAs(const boost::any& value) {
    py::object found = py::none();
    const auto take = [&found, &value](auto* type) {
        using Type = std::remove_pointer_t<decltype(type)>;
        if (const Type* held = boost::any_cast<Type>(&value)) {
            if constexpr (std::is_enum_v<Type>)
                found = py::int_(static_cast<int>(*held));
            else
                found = py::cast(*held);
        }
    };
    (take(static_cast<Types*>(nullptr)), ...);
    return found;
}

py::dict valuesOf(const kaMessage& message) {
    py::dict values;
    for (const auto& [key, value] : message.getEntries())
        values[py::str(key)] = valueAs<bool, int, unsigned, long long, unsigned long long, float, double,
                                       std::string, kaAnimationController::AnimationWidget>(value);
    return values;
}

std::unique_ptr<Listening> listen(const std::string& name, const py::function& function) {
    auto listening = std::make_unique<Listening>();
    listening->handle =
        kaOpenSGUtils::addListener(name, [function](std::string_view sent, const kaMessage& message, int) {
            Call::out([&] { function(py::str(sent.data(), sent.size()), valuesOf(message)); });
        });
    listenings().push_back(listening.get());
    return listening;
}

boost::any anyOf(const py::handle& value) {
    if (py::isinstance<py::bool_>(value))
        return value.cast<bool>();
    if (py::isinstance<py::int_>(value))
        return value.cast<int>();
    if (py::isinstance<py::float_>(value))
        return value.cast<float>();
    if (py::isinstance<py::str>(value))
        return value.cast<std::string>();
    throw py::type_error("messages carry bool, int, float and str");
}

} // namespace

void removeListeners() {
    for (Listening* listening : listenings())
        listening->handle.remove();
}

void bindMessages(py::module_& module) {
    py::class_<Listening>(module, "Listener", "A registration on the message bus; it ends with this object.")
        .def("remove", checked([](Listening& self) { self.handle.remove(); }), "Ends it now.")
        .def("__enter__", [](py::object self) { return self; })
        .def("__exit__", checked([](Listening& self, const py::args&) { self.handle.remove(); }));
    module.def(
        "listen",
        checked([](const std::string& name, const py::function& function) { return listen(name, function); }),
        py::arg("name"), py::arg("function"),
        "Has function(name, values) called for every message of that name, or of any for an empty one.\n\n"
        "The player sends 'currentFrameChanged' {'frame', 'sender'}, 'currentFullFrameChanged' {'frame'} and "
        "\n'finishedPlayingGlobal' {'finished'}. It lasts as long as the Listener that is returned. What the "
        "function raises\nreaches whoever had the message sent.");
    module.def("send", checked([](const std::string& name, const py::kwargs& values) {
                   kaMessage message(name);
                   for (const auto& [key, value] : values)
                       message.set(key.cast<std::string>(), anyOf(value), true);
                   kaOpenSGUtils::call(message, 0);
               }),
               py::arg("name"), "Sends a message with values that are bool, int, float or str.");
}

} // namespace ka::python
