#pragma once

#include "scene/Project.h"
#include "scene/Saving.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace ka::tools {

/// Options that several commands share, so that each is spelled, explained and checked in one place.

enum class Format { Csv, Json };

/// For what is written for people first.
enum class TextFormat { Text, Json };

/// FILE and everything about reading it.
void addProjectOptions(CLI::App& command, ProjectFiles& files);

/// The frame rate, the limits of readers and the tolerance: what the reading of a model needs.
void addModelOptions(CLI::App& command, ProjectFiles& files);

/// `--format csv|json`.
void addFormatOption(CLI::App& command, Format& format);

/// `--format text|json`.
void addTextFormatOption(CLI::App& command, TextFormat& format);

/// `--object NAME`.
void addObjectOption(CLI::App& command, std::string& object);

/// `-o PATH`, needed.
void addOutputOption(CLI::App& command, std::string& path, const std::string& what);

/// `-o PATH` and an option of that name for the document, both needed.
void addSceneOutputs(CLI::App& command, SavedFiles& outputs, const std::string& documentOption);

/// Accepts the numbers that a float can hold: frames.
CLI::Validator finite();

/// Accepts numbers greater than 0, up to `high`.
CLI::Validator aboveZero(double high = 1e30);

/// Accepts 0 and the finite numbers above it.
CLI::Validator zeroOrMore();

/// Accepts whole numbers from `low` to `high`.
CLI::Validator between(int low, int high);

/// Sets the examples that stand at the end of the command's help, one command line each, and a remark before
/// them.
void addExamples(CLI::App& command, const std::vector<std::string>& lines, const std::string& remark = "");

} // namespace ka::tools
