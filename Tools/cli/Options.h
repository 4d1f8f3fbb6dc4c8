#pragma once

#include "cli/Command.h"

#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <string>

namespace ka::tools {

using namespace motion;

/// Options that several commands share, so that each is spelled, explained and checked in one place.

enum class Format { Csv, Json };

/// For what is written for people first.
enum class TextFormat { Text, Json };

/// FILE and everything about reading it.
void addProjectOptions(Command& command, ProjectFiles& files);

/// The frame rate, the limits of readers and the tolerance: what the reading of a model needs.
void addModelOptions(Command& command, ProjectFiles& files);

/// `--format csv|json`.
void addFormatOption(Command& command, Format& format);

/// `--format text|json`.
void addTextFormatOption(Command& command, TextFormat& format);

/// `--object NAME`.
void addObjectOption(Command& command, std::string& object);

/// `-o PATH`, needed.
void addOutputOption(Command& command, std::string& path, const std::string& what);

/// `-o PATH` and an option of that name for the document, both needed.
void addSceneOutputs(Command& command, SavedFiles& outputs, const std::string& documentOption);

} // namespace ka::tools
