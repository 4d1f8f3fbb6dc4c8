#pragma once

#include <OpenSG/OSGNode.h>
#include <cstdint>
#include <functional>
#include <kaMotion/Project.h>
#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <thread>
#include <vector>

class kaAnimationManager;

namespace ka::python {

/// The one open project of the process, as Python holds it.
///
/// The registry is one, so there is at most one session that is open. Wrappers share it and name what they
/// stand for by id, so that none of them can outlive it or point at something freed. It belongs to the thread
/// that opened it; whatever comes from another is refused.
class Session : public std::enable_shared_from_this<Session> {
  public:
    /// Opens the files. @throws what `motion::Project` throws; OpenError while another one is open.
    static std::shared_ptr<Session> open(const motion::ProjectFiles& files, motion::Listener& listener);
    /// Takes part in a project that a host program around the interpreter has opened, plays and closes. The
    /// host calls `leave` before the project goes. @throws OpenError, ThreadError.
    static std::shared_ptr<Session> join(const motion::Project& project);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Destroys everything registered; a second time nothing. @throws ThreadError; RefusedError for the
    /// project of a host, and for one that is to close itself from within a callback.
    void close();
    /// Ends the part in a host's project, which stays as it is; a second time nothing.
    void leave();
    bool isOpen() const { return _project != nullptr; }
    /// Whether a host program plays and closes the project.
    bool isHosted() const { return _project != nullptr && _owned == nullptr; }
    /// @throws RefusedError when a host does what is meant itself.
    void requireOwn(const char* what) const;

    /// @throws ClosedError, ThreadError.
    const motion::Project& project() const;
    /// The same to be changed, where no host has it. @throws RefusedError besides.
    motion::Project& ownProject() const;
    /// The registry, while the project is open. @throws ClosedError, ThreadError.
    kaAnimationManager& manager() const;

    /// The session that is open; null for none.
    static Session* current();
    /// @throws ThreadError when a project is open that another thread opened.
    static void checkThread();

    /// What the work told its user, a line each.
    std::vector<std::string> notes;
    /// Callbacks of this session that the module knows by C functions; they go with it.
    std::vector<pybind11::object> functions;
    /// Called by `close` before anything is destroyed, last added first.
    std::vector<std::function<void()>> whenClosing;

  private:
    Session();
    static void requireNone();
    void end();

    std::thread::id _thread;
    std::unique_ptr<motion::Project> _owned; ///< null in a host
    const motion::Project* _project = nullptr;
};

using SessionPtr = std::shared_ptr<Session>;

/// Hands progress to a Python function and keeps notes. The function ends the work, where that can be ended, by
/// giving False; so does what it raises, and an interrupt from the keyboard, which reach the caller in any case.
class PythonListener : public motion::Listener {
  public:
    /// @param progress  a function of (what, done, total), or None.
    explicit PythonListener(pybind11::object progress) : _progress(std::move(progress)) {}

    bool progress(const std::string& what, std::size_t done, std::size_t total) override;
    void note(const std::string& line) override { notes.push_back(line); }

    std::vector<std::string> notes; ///< in order

  private:
    pybind11::object _progress;
};

} // namespace ka::python
