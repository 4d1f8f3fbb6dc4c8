#pragma once

#include <QString>
#include <QStringList>
#include <kaAnimationTypes.h>
#include <vector>

namespace ka::motion {
class Project;
} // namespace ka::motion

namespace ka::studio {

/// What Python sees of the studio around it.
class StudioForPython {
  public:
    virtual ~StudioForPython() = default;

    /// Something was printed.
    virtual void write(const QString& text, bool isError) = 0;
    /// Called some twenty times a second while Python runs. @return false to have it interrupted.
    virtual bool breathe() = 0;

    virtual float frame() const = 0;                      ///< That the playhead shows.
    virtual void setFrame(float frame) = 0;               ///< Moves it; playing stops.
    virtual bool isPlaying() const = 0;                   ///< Whether the timeline plays.
    virtual void play(bool reverse) = 0;                  ///< From where the playhead is.
    virtual void pause() = 0;                             ///< Stays where it is.
    virtual std::vector<kaUID> selectedKeys() const = 0;  ///< Ascending.
    virtual std::vector<kaUID> selectedBars() const = 0;  ///< Of the clips' panel, ascending.
    virtual std::vector<kaUID> shownCurves() const = 0;   ///< Of the curve editor.
    virtual void selectKeys(std::vector<kaUID> keys) = 0; ///< These and no others.
    virtual void selectBars(std::vector<kaUID> bars) = 0; ///< These and no others.
};

/// The interpreter, which stands in a library of its own that is loaded on first use: the studio runs where
/// Python is missing. There is one in a process, from its first use until the process ends.
class PythonEngine {
  public:
    virtual ~PythonEngine() = default;

    /// Starts the interpreter; a second time nothing. @return an empty text, or why there is none.
    virtual QString start() = 0;
    /// The studio that asks from now on, and what it has open; null for nothing. What scripts hold of another
    /// project raises when it is touched.
    virtual void join(StudioForPython* studio, const ka::motion::Project* project) = 0;
    /// Takes leave of a studio that goes; nothing where another one has taken its place.
    virtual void leave(const StudioForPython* studio) = 0;

    /// Whether the lines are a whole command, and not the begin of one.
    virtual bool isComplete(const QString& source) = 0;
    /// Runs a command in the console's names. What it raises is printed with its traceback.
    /// @return whether it ran to its end.
    virtual bool runCommand(const QString& source) = 0;
    /// Runs a file in names of its own, likewise.
    virtual bool runScript(const QString& path) = 0;
    /// What the last word of a line could become.
    virtual QStringList completions(const QString& line) = 0;

    /// Loads the library. @param fault  gets why there is none. @return null without.
    static PythonEngine* load(QString& fault);
};

} // namespace ka::studio

/// What the library exports: its one engine.
using KaStudioPythonEngine = ka::studio::PythonEngine* (*)();
