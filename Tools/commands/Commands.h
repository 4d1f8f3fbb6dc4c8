#pragma once

#include "cli/Command.h"

namespace ka::tools {

// Each of these adds one command, with its options, help and examples, to the program. Choosing it sets
// `action`.

void addImportCommand(CLI::App& program, Action& action);
void addConvertCommand(CLI::App& program, Action& action);
void addExportCommand(CLI::App& program, Action& action);
void addDiffCommand(CLI::App& program, Action& action);
void addInfoCommand(CLI::App& program, Action& action);
void addValidateCommand(CLI::App& program, Action& action);
void addSampleCommand(CLI::App& program, Action& action);
void addPoseCommand(CLI::App& program, Action& action);
void addPlotCommand(CLI::App& program, Action& action);
void addRenderCommand(CLI::App& program, Action& action);
void addPlayCommand(CLI::App& program, Action& action);
void addCopyCommand(CLI::App& program, Action& action);
void addPasteCommand(CLI::App& program, Action& action);
void addOperationCommands(CLI::App& program, Action& action);
void addUpgradeCommand(CLI::App& program, Action& action);
void addBatchCommand(CLI::App& program, Action& action);
void addDemoCommand(CLI::App& program, Action& action);

} // namespace ka::tools
