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
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Destroys everything registered; a second time nothing. @throws ThreadError.
    void close();
    bool isOpen() const { return _project != nullptr; }

    /// @throws ClosedError, ThreadError.
    motion::Project& project() const;
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
    void end();

    std::thread::id _thread;
    std::unique_ptr<motion::Project> _project;
};

using SessionPtr = std::shared_ptr<Session>;

/// Hands progress to a Python function and keeps notes; what the function raises ends the work where that can
/// be ended, and reaches the caller in any case.
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
