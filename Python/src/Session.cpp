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

std::shared_ptr<Session> Session::open(const motion::ProjectFiles& files, motion::Listener& listener) {
    checkThread();
    if (openSession() != nullptr)
        raise(ErrorKind::Open, "a project is open: close it first, or merge the other file into it");
    std::shared_ptr<Session> session(new Session());
    session->_project = std::make_unique<motion::Project>(files, listener);
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
    if (Call::depth() > 1)
        raise(ErrorKind::Refused, "a project cannot be closed by what it calls");
    end();
}

void Session::end() {
    if (!isOpen())
        return;
    while (!whenClosing.empty()) {
        const std::function<void()> last = std::move(whenClosing.back());
        whenClosing.pop_back();
        last();
    }
    kaAnimationController* controller = kaAnimationController::the();
    controller->stopGlobal();
    controller->stop();
    _project.reset();
    openSession() = nullptr;
    functions.clear();
}

motion::Project& Session::project() const {
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
    if (_progress.is_none())
        return true;
    Call::out([&] { _progress(what, done, total); });
    return !Call::hasFailed();
}

} // namespace ka::python
