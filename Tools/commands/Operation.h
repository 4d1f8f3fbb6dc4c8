#pragma once

#include "cli/Command.h"

#include <functional>
#include <kaMotion/Listener.h>
#include <kaMotion/MotionSelection.h>
#include <kaMotion/OperationReport.h>
#include <kaMotion/Project.h>
#include <string>
#include <vector>

namespace ka::tools {

using namespace motion;

/// What an operation works on.
struct OperationInput {
    Project& project;
    MotionSelection selection;
    Listener& listener;

    CurveList curves() const { return selectedCurves(selection); }
    std::vector<kaAnimationStrip*> clips() const { return selectedClips(selection); }
};

/// Does it, with the options that the line has given.
struct RunOperation {
    std::function<OperationReport(const OperationInput&)> run;
    /// What has to be read before the project is opened, because there is one registry; may be empty.
    std::function<void(const ProjectFiles&, Listener&)> prepare;
};

/// One operation as the command line offers it: a command of its own, and a link of a chain.
struct Operation {
    std::string name;
    std::string description;
    std::vector<std::string> examples;
    std::string remark; ///< before the examples
    /// Adds the operation's own options to a command. What comes back runs with what a line has set them to.
    std::function<RunOperation(Command&)> declare;
};

/// Those that give curves other keys.
std::vector<Operation> curveOperations();
/// Those on whole clips and skeletons.
std::vector<Operation> clipOperations();

/// The numbers of "0,10,20.5".
/// @throws Failure (Usage) for anything else.
std::vector<double> numberList(const std::string& text);

} // namespace ka::tools
