#pragma once

#include <vector>

namespace ka::motion {

/// A Butterworth low-pass of the second order over evenly spaced samples, forwards and backwards, with the
/// samples turned over at both ends so that these stay where they are.
/// @param cutOff  of both runs together, where 1/√2 of the height is left, as a part of the samples' rate;
/// above 0 and below 0.5.
std::vector<double> lowPassed(const std::vector<double>& samples, double cutOff);

} // namespace ka::motion
