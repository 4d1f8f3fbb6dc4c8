#pragma once

#include "scene/Project.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace ka::tools {

/// Options that several commands share, so that each is spelled, explained and checked in one place.

enum class Format { Csv, Json };

/// FILE and everything about reading it.
void addProjectOptions(CLI::App& command, ProjectFiles& files);

/// The frame rate, the limits of readers and the tolerance: what the reading of a model needs.
void addModelOptions(CLI::App& command, ProjectFiles& files);

/// `--format csv|json`.
void addFormatOption(CLI::App& command, Format& format);

/// `--object NAME`.
void addObjectOption(CLI::App& command, std::string& object);

/// `-o PATH`, needed.
void addOutputOption(CLI::App& command, std::string& path, const std::string& what);

/// Accepts finite numbers; `AboveZero` only those greater than 0 as well.
extern const CLI::Validator Finite;
extern const CLI::Validator AboveZero;

/// Sets the examples that stand at the end of the command's help, one command line each.
void addExamples(CLI::App& command, const std::vector<std::string>& lines);

} // namespace ka::tools
