#pragma once

#include "../PythonEngine.h"

#include <pybind11/pybind11.h>

namespace ka::studio {

/// Python in the studio's process, on its thread.
class Interpreter : public PythonEngine {
  public:
    QString start() override;
    void join(StudioForPython* studio, const ka::motion::Project* project) override;
    void leave(const StudioForPython* studio) override;
    bool isComplete(const QString& source) override;
    bool runCommand(const QString& source) override;
    bool runScript(const QString& path) override;
    QStringList completions(const QString& line) override;

    /// The studio that asks; null for none.
    StudioForPython* studio() const { return _studio; }

  private:
    QString initialize();
    QString takeInPackage();
    void release();
    bool run(const char* method, const QString& argument);
    static int breathe(void* interpreter);

    StudioForPython* _studio = nullptr;
    bool _isStarted = false;
    bool _isRunning = false;
    pybind11::object _package, _core, _console;
};

} // namespace ka::studio
