#include "play/MessageLine.h"

#include <cmath>
#include <kaAnimationController.h>
#include <kaMessage.h>
#include <kaMotion/Text.h>
#include <nlohmann/json.hpp>

namespace ka::tools {

using namespace motion;

namespace {

using Json = nlohmann::ordered_json;

Json numberOf(double value) {
    return std::isfinite(value) ? Json(shortened(value)) : Json();
}

Json valueOf(const boost::any& value) {
    if (const auto* single = boost::any_cast<float>(&value))
        return numberOf(static_cast<double>(*single));
    if (const auto* number = boost::any_cast<double>(&value))
        return numberOf(*number);
    if (const auto* whole = boost::any_cast<int>(&value))
        return *whole;
    if (const auto* flag = boost::any_cast<bool>(&value))
        return *flag;
    if (const auto* widget = boost::any_cast<kaAnimationController::AnimationWidget>(&value))
        return static_cast<int>(*widget);
    if (const auto* text = boost::any_cast<std::string>(&value))
        return utf8FromLatin1(*text);
    return {};
}

} // namespace

std::string messageAsText(const std::string& name, const kaMessage& message) {
    std::string line = name;
    for (const auto& [key, value] : message.getEntries()) {
        const auto* single = boost::any_cast<float>(&value);
        const Json known = valueOf(value);
        line += " " + key + "=";
        if (single != nullptr)
            line += formatNumber(static_cast<double>(*single)); // "nan" says more than nothing
        else
            line +=
                known.is_null() ? "?" : oneLine(known.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    return line;
}

std::string messageAsJson(const std::string& name, const kaMessage& message) {
    Json line{{"message", name}};
    for (const auto& [key, value] : message.getEntries())
        line[key] = valueOf(value);
    return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace ka::tools
