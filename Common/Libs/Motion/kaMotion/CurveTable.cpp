#include "kaMotion/CurveTable.h"

#include "kaMotion/Text.h"
#include "writers/NpyArchive.h"

#include <cmath>

namespace ka::motion {

namespace {

std::string quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string out = "\"";
    for (const char c : text)
        out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

std::string titleOf(const CurveTable::Column& column) {
    return column.unit.empty() ? column.name : column.name + " [" + column.unit + "]";
}

} // namespace

std::string csvOf(const CurveTable& table) {
    std::string csv = "frame,seconds";
    for (const CurveTable::Column& column : table.columns)
        csv += "," + quoted(titleOf(column));
    csv += "\r\n";
    auto value = table.values.begin();
    for (const double frame : table.frames) {
        csv += formatNumber(frame) + "," + formatNumber(frame / table.framesPerSecond);
        for (std::size_t i = 0; i < table.columns.size(); ++i, ++value)
            csv += "," + (std::isnan(*value) ? std::string() : formatNumber(static_cast<double>(*value)));
        csv += "\r\n";
    }
    return csv;
}

std::string npzOf(const CurveTable& table) {
    std::vector<std::string> names, units;
    for (const CurveTable::Column& column : table.columns) {
        names.push_back(column.name);
        units.push_back(column.unit);
    }
    std::vector<double> seconds;
    for (const double frame : table.frames)
        seconds.push_back(frame / table.framesPerSecond);
    NpyArchive archive;
    archive.add("values", table.values, {table.frames.size(), table.columns.size()});
    archive.add("frames", table.frames, {table.frames.size()});
    archive.add("seconds", seconds, {seconds.size()});
    archive.add("names", names);
    archive.add("units", units);
    archive.add("fps", std::vector<double>{table.framesPerSecond}, {});
    return archive.finish();
}

} // namespace ka::motion
