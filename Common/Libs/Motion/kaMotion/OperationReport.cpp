#include <cmath>
#include <kaMotion/OperationReport.h>
#include <kaMotion/Text.h>
#include <nlohmann/json.hpp>

namespace ka::motion {

namespace {

using Json = nlohmann::ordered_json;

Json objectOf(const Measure& measure) {
    Json object{{"name", measure.name}, {"value", nullptr}};
    if (std::isfinite(measure.value))
        object["value"] = shortened(measure.value);
    if (!measure.unit.empty())
        object["unit"] = measure.unit;
    if (!measure.where.empty())
        object["where"] = measure.where;
    if (measure.frame)
        object["frame"] = shortened(*measure.frame);
    if (measure.allowed)
        object["allowed"] = shortened(*measure.allowed);
    return object;
}

Json objectOf(const OperationReport& report) {
    Json measures = Json::array();
    for (const Measure& measure : report.measures)
        measures.push_back(objectOf(measure));
    return {{"operation", report.operation},
            {"cancelled", report.isCancelled},
            {"dryRun", report.isDry},
            {"curves", report.curves},
            {"changedCurves", report.changedCurves},
            {"keysBefore", report.keysBefore},
            {"keysAfter", report.keysAfter},
            {"measures", std::move(measures)},
            {"notes", report.notes},
            {"faults", report.faults}};
}

std::string dumped(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string lineOf(const Measure& measure) {
    std::string line = "  " + measure.name + ": " + formatNumber(measure.value, 4);
    const std::string unit = measure.unit.empty() ? "" : " " + measure.unit;
    line += unit;
    if (measure.allowed)
        line += " of " + formatNumber(*measure.allowed, 4) + unit;
    if (!measure.where.empty())
        line += ", " + oneLine(measure.where);
    if (measure.frame)
        line += " at frame " + formatNumber(*measure.frame, 6);
    return line + "\n";
}

} // namespace

std::string OperationReport::text() const {
    if (isCancelled)
        return operation + ": cancelled, nothing changed\n";
    std::string text = operation + (isDry ? " (dry run): " : ": ") + counted(changedCurves, "curve") +
                       " of " + std::to_string(curves) + " changed, " + counted(keysBefore, "key") +
                       " before, " + std::to_string(keysAfter) + " after";
    if (keysBefore > 0 && keysAfter < keysBefore)
        text += " (" +
                formatNumber(100.0 * static_cast<double>(keysAfter) / static_cast<double>(keysBefore), 3) +
                " %)";
    text += "\n";
    for (const Measure& measure : measures)
        text += lineOf(measure);
    for (const std::vector<std::string>* lines : {&notes, &faults})
        for (const std::string& line : *lines)
            text += "  " + oneLine(line) + "\n";
    return text;
}

std::string OperationReport::json() const {
    return dumped(objectOf(*this));
}

std::string jsonOf(const std::vector<OperationReport>& reports) {
    Json array = Json::array();
    for (const OperationReport& report : reports)
        array.push_back(objectOf(report));
    return dumped(array);
}

} // namespace ka::motion
