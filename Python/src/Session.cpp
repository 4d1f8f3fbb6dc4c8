#include "Session.h"

#include "Call.h"
#include "Errors.h"

#include <kaAnimationController.h>
#include <kaAnimationManager.h>

namespace py = pybind11;

namespace ka::python {

namespace {

Session*& openSession() {
    static Session* session = nullptr;
    return session;
}

} // namespace

Session::Session() : _thread(std::this_thread::get_id()) {}

void Session::requireNone() {
    checkThread();
    if (openSession() != nullptr)
        raise(ErrorKind::Open, "a project is open: close it first, or merge the other file into it");
}

std::shared_ptr<Session> Session::open(const motion::ProjectFiles& files, motion::Listener& listener) {
    requireNone();
    std::shared_ptr<Session> session(new Session());
    session->_owned = std::make_unique<motion::Project>(files, listener);
    session->_project = session->_owned.get();
    openSession() = session.get();
    return session;
}

std::shared_ptr<Session> Session::join(const motion::Project& project) {
    requireNone();
    std::shared_ptr<Session> session(new Session());
    session->_project = &project;
    openSession() = session.get();
    return session;
}

Session::~Session() {
    // Dropped, not closed: nothing refers to it any more, so whichever thread dropped it may end it.
    end();
}

void Session::close() {
    if (!isOpen())
        return;
    checkThread();
    requireOwn("closes it");
    if (Call::depth() > 1)
        raise(ErrorKind::Refused, "a project cannot be closed by what it calls");
    end();
}

void Session::leave() {
    end();
}

void Session::requireOwn(const char* what) const {
    if (isHosted())
        raise(ErrorKind::Refused,
              std::string("the program around this interpreter has the project open and ") + what);
}

void Session::end() {
    if (!isOpen())
        return;
    while (!whenClosing.empty()) {
        const std::function<void()> last = std::move(whenClosing.back());
        whenClosing.pop_back();
        last();
    }
    if (!isHosted()) {
        kaAnimationController* controller = kaAnimationController::the();
        controller->stopGlobal();
        controller->stop();
    }
    _owned.reset();
    _project = nullptr;
    openSession() = nullptr;
    functions.clear();
}

motion::Project& Session::ownProject() const {
    project();
    requireOwn("holds its scene");
    return *_owned;
}

const motion::Project& Session::project() const {
    if (!isOpen())
        raise(ErrorKind::Closed, "the project is closed");
    checkThread();
    return *_project;
}

kaAnimationManager& Session::manager() const {
    project();
    return *kaAnimationManager::the();
}

Session* Session::current() {
    return openSession();
}

void Session::checkThread() {
    const Session* session = openSession();
    if (session != nullptr && session->_thread != std::this_thread::get_id())
        raise(ErrorKind::Thread, "the open project belongs to the thread that opened it");
}

bool PythonListener::progress(const std::string& what, std::size_t done, std::size_t total) {
    bool goesOn = true;
    Call::out([&] {
        if (Py_MakePendingCalls() != 0) // Ctrl+C among them
            throw py::error_already_set();
        if (!_progress.is_none())
            goesOn = !_progress(what, done, total).is(py::bool_(false));
    });
    return goesOn && !Call::hasFailed();
}

} // namespace ka::python
