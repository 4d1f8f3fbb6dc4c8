#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"

#include <algorithm>
#include <kaMotion/Columns.h>
#include <kaMotion/Summary.h>
#include <kaMotion/Text.h>
#include <limits>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

namespace ka::tools {

namespace {

using Json = nlohmann::ordered_json;
using Object = ProjectSummary::Object;

/// Lines of one list that anybody reads.
constexpr std::size_t mostLines = 200;

struct InfoOptions {
    ProjectFiles files;
    TextFormat format = TextFormat::Text;
};

std::string number(float value) {
    return formatNumber(static_cast<double>(value), 6);
}

bool hasRange(const Object& object) {
    return object.begin <= object.end;
}

std::string range(const Object& object) {
    return hasRange(object) ? number(object.begin) + " to " + number(object.end) : "empty";
}

/// The curves that move one node, or that write to one container of which the node is not known.
struct Target {
    std::string name;
    std::vector<const Object*> curves;

    std::size_t keys() const {
        std::size_t sum = 0;
        for (const Object* curve : curves)
            sum += curve->keys.size();
        return sum;
    }
};

/// Nodes in the order of the scene, then containers by number, then what has no field.
std::vector<Target> targetsOf(const ProjectSummary& summary) {
    std::map<std::pair<std::size_t, unsigned int>, Target> targets;
    for (const Object& curve : summary.objects) {
        if (curve.type != KA_TYPE_CURVE)
            continue;
        const bool isBound = curve.node != ProjectSummary::none;
        const bool hasField = curve.field != 0;
        Target& target = targets[{curve.node, isBound    ? 0U
                                              : hasField ? curve.container
                                                         : std::numeric_limits<unsigned int>::max()}];
        target.curves.push_back(&curve);
        target.name = isBound    ? summary.nodes[curve.node].name
                      : hasField ? "container " + std::to_string(curve.container)
                                 : "no field";
    }
    std::vector<Target> list;
    for (auto& [place, target] : targets) {
        std::stable_sort(target.curves.begin(), target.curves.end(),
                         [](const Object* a, const Object* b) { return a->attribute < b->attribute; });
        list.push_back(std::move(target));
    }
    return list;
}

/// "rotation XYZ, translation X": components that differ in their last letter stand together.
std::string attributeList(const Target& target) {
    std::map<std::string, std::string> components;
    for (const Object* curve : target.curves) {
        const std::string& attribute = curve->attribute;
        const bool isComponent = attribute.size() > 1 && attribute.back() >= 'A' && attribute.back() <= 'Z' &&
                                 attribute[attribute.size() - 2] >= 'a';
        std::string& letters =
            components[isComponent ? attribute.substr(0, attribute.size() - 1) : attribute];
        if (isComponent && letters.find(attribute.back()) == letters.npos)
            letters += attribute.back();
    }
    std::string list;
    for (const auto& [name, letters] : components)
        list +=
            (list.empty() ? "" : ", ") + (name.empty() ? "?" : name) + (letters.empty() ? "" : " ") + letters;
    return list;
}

std::pair<float, float> rangeOf(const std::vector<const Object*>& objects) {
    float begin = KA_EMPTY_EXTENT, end = -KA_EMPTY_EXTENT;
    for (const Object* object : objects) {
        begin = std::min(begin, object->begin);
        end = std::max(end, object->end);
    }
    return {begin, end};
}

std::vector<const Object*> ofType(const ProjectSummary& summary, unsigned int type) {
    std::vector<const Object*> found;
    for (const Object& object : summary.objects)
        if (object.type == type)
            found.push_back(&object);
    return found;
}

std::size_t animatedFields(const ProjectSummary& summary) {
    std::set<kaUID> fields;
    for (const Object& object : summary.objects)
        if (object.field != 0)
            fields.insert(object.field);
    return fields.size();
}

struct Below {
    std::size_t blocks = 0, curves = 0;
};

Below below(const ProjectSummary& summary, const Object& object) {
    Below sum;
    std::vector<const Object*> pending{&object};
    while (!pending.empty()) {
        const Object* next = pending.back();
        pending.pop_back();
        sum.blocks += next->type == KA_TYPE_UNIT ? 1 : 0;
        sum.curves += next->type == KA_TYPE_CURVE ? 1 : 0;
        for (const std::size_t child : next->children)
            pending.push_back(&summary.objects[child]);
    }
    return sum;
}

/// What stands by itself: clips, loose tracks, blocks and curves, and every sequence.
std::vector<const Object*> animationsOf(const ProjectSummary& summary) {
    std::vector<const Object*> list;
    for (const unsigned int type :
         {KA_TYPE_STRIP, KA_TYPE_STREAK, KA_TYPE_UNIT, KA_TYPE_CURVE, KA_TYPE_SEQUENCE})
        for (const Object* object : ofType(summary, type))
            if (object->parent == ProjectSummary::none || type == KA_TYPE_SEQUENCE)
                list.push_back(object);
    return list;
}

std::string flagsOf(const Object& object) {
    std::string list;
    const auto add = [&list](bool holds, const char* word) {
        if (holds)
            list += (list.empty() ? "" : ", ") + std::string(word);
    };
    add(!object.active, "inactive");
    add(object.repeating, "repeating");
    add(object.flipped, "flipped");
    add(object.motionBlur, "motion blur");
    return list;
}

std::string contentsOf(const ProjectSummary& summary, const Object& object) {
    if (object.type == KA_TYPE_SEQUENCE)
        return {};
    if (object.type == KA_TYPE_CURVE)
        return counted(object.keys.size(), "key");
    const Below sum = below(summary, object);
    return object.type == KA_TYPE_UNIT ? counted(sum.curves, "curve")
                                       : counted(sum.blocks, "block") + ", " + counted(sum.curves, "curve");
}

std::string countsAsText(const ProjectSummary& summary) {
    Columns counts("lr");
    counts.add({"nodes", std::to_string(summary.nodes.size())});
    for (const unsigned int type : {KA_TYPE_STRIP, KA_TYPE_STREAK, KA_TYPE_UNIT, KA_TYPE_CURVE})
        counts.add({typeName(type) + std::string("s"), std::to_string(summary.count(type))});
    counts.add({"keys", std::to_string(summary.keys)});
    counts.add({"sequences", std::to_string(summary.count(KA_TYPE_SEQUENCE))});
    counts.add(
        {"fields", std::to_string(summary.fields), std::to_string(animatedFields(summary)) + " animated"});
    return counts.text(2);
}

/// A list with its heading; nothing when it is empty.
std::string section(const std::string& heading, const Columns& lines, std::size_t all) {
    if (lines.isEmpty())
        return {};
    const std::string rest =
        all > mostLines ? "  and " + std::to_string(all - mostLines) + " more (--format json lists all)\n"
                        : "";
    return "\n" + heading + "\n" + lines.text(2) + rest;
}

std::string asText(const InfoOptions& options, const ProjectSummary& summary) {
    const std::vector<Target> targets = targetsOf(summary);
    std::string text = printedPath(options.files.file);
    if (!options.files.animation.empty())
        text += ", " + printedPath(options.files.animation);
    text += "\n" + countsAsText(summary);
    Columns animations("llll"), nodes("llrrl");
    const std::vector<const Object*> listed = animationsOf(summary);
    for (std::size_t i = 0; i < std::min(listed.size(), mostLines); ++i)
        animations.add({typeName(listed[i]->type), oneLine(listed[i]->name), range(*listed[i]),
                        contentsOf(summary, *listed[i]), flagsOf(*listed[i])});
    for (std::size_t i = 0; i < std::min(targets.size(), mostLines); ++i) {
        const Target& target = targets[i];
        const auto [begin, end] = rangeOf(target.curves);
        nodes.add({oneLine(target.name), oneLine(attributeList(target), 1000),
                   counted(target.curves.size(), "curve"), counted(target.keys(), "key"),
                   begin <= end ? number(begin) + " to " + number(end) : "empty"});
    }
    return text + section("animations", animations, listed.size()) +
           section("animated nodes", nodes, targets.size());
}

Json rangeAsJson(float begin, float end) {
    if (begin > end)
        return nullptr;
    return {{"begin", shortened(static_cast<double>(begin))}, {"end", shortened(static_cast<double>(end))}};
}

Json animationsAsJson(const ProjectSummary& summary) {
    Json list = Json::array();
    for (const Object* object : animationsOf(summary)) {
        const Below sum = below(summary, *object);
        list.push_back({{"type", typeName(object->type)},
                        {"id", std::to_string(object->id)},
                        {"name", object->name},
                        {"frames", rangeAsJson(object->begin, object->end)},
                        {"active", object->active},
                        {"repeating", object->repeating},
                        {"flipped", object->flipped},
                        {"motionBlur", object->motionBlur},
                        {"blocks", sum.blocks},
                        {"curves", sum.curves}});
    }
    return list;
}

Json nodesAsJson(const std::vector<Target>& targets) {
    Json list = Json::array();
    for (const Target& target : targets) {
        Json curves = Json::array();
        for (const Object* curve : target.curves)
            curves.push_back({{"attribute", curve->attribute},
                              {"curve", std::to_string(curve->id)},
                              {"keys", curve->keys.size()},
                              {"frames", rangeAsJson(curve->begin, curve->end)}});
        list.push_back({{"name", target.name}, {"curves", curves}});
    }
    return list;
}

std::string asJson(const InfoOptions& options, const ProjectSummary& summary) {
    const std::vector<Target> targets = targetsOf(summary);
    const auto [begin, end] = rangeOf(ofType(summary, KA_TYPE_CURVE));
    const Json document{{"file", options.files.file},
                        {"animation", options.files.animation},
                        {"counts",
                         {{"nodes", summary.nodes.size()},
                          {"clips", summary.count(KA_TYPE_STRIP)},
                          {"tracks", summary.count(KA_TYPE_STREAK)},
                          {"blocks", summary.count(KA_TYPE_UNIT)},
                          {"curves", summary.count(KA_TYPE_CURVE)},
                          {"keys", summary.keys},
                          {"sequences", summary.count(KA_TYPE_SEQUENCE)},
                          {"fields", summary.fields},
                          {"animatedFields", animatedFields(summary)}}},
                        {"frames", rangeAsJson(begin, end)},
                        {"animations", animationsAsJson(summary)},
                        {"nodes", nodesAsJson(targets)}};
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

ExitCode info(const InfoOptions& options, Output& output) {
    Terminal terminal;
    const Project project(options.files, terminal);
    const ProjectSummary summary = summarize(project);
    output.write(options.format == TextFormat::Json ? asJson(options, summary) : asText(options, summary));
    return ExitCode::Fine;
}

} // namespace

void addInfoCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<InfoOptions>();
    Command command(program, "info", "Print what a file holds: counts, names, ranges, nodes");
    addProjectOptions(command, options->files);
    addTextFormatOption(command, options->format);
    command.examples({"ka-anim info walk.bvh", "ka-anim info walk.osg --animation walk.xml --format json"});
    command.runs(action, [options](Output& output) { return info(*options, output); });
}

} // namespace ka::tools
