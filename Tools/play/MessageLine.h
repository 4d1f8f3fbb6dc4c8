#pragma once

#include <string>

class kaMessage;

namespace ka::tools {

/// A message in one line: its name, then each key with its value, in the order in which they were set.
/// Values of a type that the tools do not know are "?" (null in JSON).
std::string messageAsText(const std::string& name, const kaMessage& message);
std::string messageAsJson(const std::string& name, const kaMessage& message);

} // namespace ka::tools
