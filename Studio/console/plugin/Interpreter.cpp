#include "Interpreter.h"

#include "StudioObject.h"
#include "Ticker.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <dlfcn.h>
#include <memory>
#include <pybind11/embed.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::studio {

namespace {

std::string utf8(const QString& text) {
    return text.toUtf8().toStdString();
}

QString textOf(const py::error_already_set& error) {
    return QString::fromUtf8(error.what()).section(QLatin1Char('\n'), 0, 0);
}

/// The folder that this library is in.
QString ownFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ownFolder), &info) == 0 || info.dli_fname == nullptr)
        return {};
    return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).canonicalPath();
}

/// What the interpreter holds must go before it does, and it before the process.
void endInterpreter() {
    PyGILState_Ensure();
    py::finalize_interpreter();
}

} // namespace

QString Interpreter::start() {
    if (_isStarted)
        return {};
    if (Py_IsInitialized() == 0) {
        const QString fault = initialize();
        if (!fault.isEmpty())
            return fault;
        PyEval_SaveThread(); // from here on whoever calls takes the lock
    }
    const py::gil_scoped_acquire held;
    const QString fault = takeInPackage();
    _isStarted = fault.isEmpty();
    return fault;
}

QString Interpreter::initialize() {
    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    config.install_signal_handlers = 0;
    config.parse_argv = 0;
    // The Python that the package was built for, also where another one comes first on the path.
    PyStatus status = PyConfig_SetBytesString(&config, &config.program_name, KA_STUDIO_PYTHON);
    if (PyStatus_Exception(status) == 0)
        status = Py_InitializeFromConfig(&config);
    PyConfig_Clear(&config);
    if (PyStatus_Exception(status) != 0)
        return QString::fromUtf8(status.err_msg != nullptr ? status.err_msg : "Python does not start");
    qAddPostRoutine(&endInterpreter);
    return {};
}

QString Interpreter::takeInPackage() {
    try {
        const py::object places = py::module_::import("sys").attr("path");
        for (const char* folder : {"/../../python", "/" KA_STUDIO_PACKAGES})
            if (const QString path = ownFolder() + QLatin1String(folder);
                QFileInfo::exists(path + QStringLiteral("/kaanimation/__init__.py")))
                places.attr("append")(utf8(QFileInfo(path).canonicalFilePath()));
        _package = py::module_::import("kaanimation");
        _core = py::module_::import("kaanimation._core");
        QFile source(QStringLiteral(":/ka-studio/console.py"));
        source.open(QIODevice::ReadOnly);
        py::dict names;
        names["__name__"] = "ka_studio_console";
        names["__file__"] = "<console>";
        names["__builtins__"] = py::module_::import("builtins");
        const py::object code = py::module_::import("builtins")
                                    .attr("compile")(source.readAll().toStdString(), "<console>", "exec");
        py::module_::import("builtins").attr("exec")(code, names);
        const py::cpp_function write([this](const std::string& text, bool isError) {
            if (_studio != nullptr)
                _studio->write(QString::fromStdString(text), isError);
        });
        _console = names["Console"](makeStudioObject(*this, _package), write, _package);
    } catch (py::error_already_set& error) {
        return textOf(error);
    }
    // Nothing of Python may be held by what goes after it.
    py::module_::import("atexit").attr("register")(py::cpp_function([this] { release(); }));
    return {};
}

void Interpreter::release() {
    _console = _core = _package = py::object();
    _isStarted = false;
}

void Interpreter::join(StudioForPython* studio, const ka::motion::Project* project) {
    if (!_isStarted)
        return;
    const py::gil_scoped_acquire held;
    _studio = studio;
    try {
        _core.attr("_leave")();
        py::object joined = py::none();
        if (project != nullptr)
            joined = _core.attr("_join")(py::capsule(project, nullptr, nullptr));
        _console.attr("take_project")(joined);
    } catch (py::error_already_set& error) {
        if (_studio != nullptr)
            _studio->write(textOf(error) + QLatin1Char('\n'), true);
    }
}

void Interpreter::leave(const StudioForPython* studio) {
    if (studio != _studio)
        return;
    join(_studio, nullptr);
    _studio = nullptr;
}

int Interpreter::breathe(void* interpreter) {
    auto& self = *static_cast<Interpreter*>(interpreter);
    if (!self._isRunning || self._studio == nullptr || self._studio->breathe())
        return 0;
    PyErr_SetNone(PyExc_KeyboardInterrupt);
    return -1;
}

bool Interpreter::run(const char* method, const QString& argument) {
    if (!_isStarted || _isRunning)
        return false;
    const py::gil_scoped_acquire held;
    bool isDone = false;
    _isRunning = true;
    auto ticker = std::make_unique<Ticker>([this] {
        Py_AddPendingCall(&Interpreter::breathe, this);
        const py::gil_scoped_acquire seen; // a call that another thread adds is not looked for until this
    });
    try {
        isDone = _console.attr(method)(utf8(argument)).cast<bool>();
    } catch (py::error_already_set& error) { // stopped in the console's own few lines
        if (_studio != nullptr)
            _studio->write(textOf(error) + QLatin1Char('\n'), true);
    }
    const py::gil_scoped_release letGo; // it may wait for the lock
    ticker.reset();
    _isRunning = false;
    return isDone;
}

bool Interpreter::isComplete(const QString& source) {
    if (!_isStarted)
        return true;
    const py::gil_scoped_acquire held;
    return _console.attr("is_complete")(utf8(source)).cast<bool>();
}

bool Interpreter::runCommand(const QString& source) {
    return run("run", source);
}

bool Interpreter::runScript(const QString& path) {
    return run("run_file", path);
}

QStringList Interpreter::completions(const QString& line) {
    QStringList found;
    if (!_isStarted)
        return found;
    const py::gil_scoped_acquire held;
    try {
        for (const py::handle word : _console.attr("completions")(utf8(line)))
            found.append(QString::fromStdString(word.cast<std::string>()));
    } catch (py::error_already_set&) {
        // There is nothing to complete.
    }
    return found;
}

} // namespace ka::studio
