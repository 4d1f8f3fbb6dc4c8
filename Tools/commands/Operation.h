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
using RunOperation = std::function<OperationReport(const OperationInput&)>;

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

} // namespace ka::tools
