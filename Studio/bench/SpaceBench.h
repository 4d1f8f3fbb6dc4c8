#pragma once

#include <functional>

namespace ka::studio {

class MainWindow;

/// Prints a row of the table: what, how much, its unit, and what is wanted.
using BenchRow = std::function<void(const char* what, double measured, const char* unit, const char* wanted)>;

/// Measures the scene's view, with OpenGL and without, on what is open and then on 20 000 nodes.
void measureSpace(MainWindow& window, const BenchRow& row);

} // namespace ka::studio
