#include "commands/Operation.h"

#include <algorithm>
#include <fstream>
#include <kaAnimationStrip.h>
#include <kaMotion/EditClips.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Loop.h>
#include <kaMotion/Mirror.h>
#include <kaMotion/Retarget.h>
#include <kaMotion/Text.h>
#include <memory>
#include <sstream>

namespace ka::tools {

namespace {

RunOperation declareLoop(Command& command) {
    auto options = std::make_shared<LoopOptions>();
    command.option("--seam", options->seam, "frames before the end over which the motion closes")
        .aboveZero()
        .showsDefault();
    command.choice("--root", options->rootMotion,
                   {{"close", RootMotion::Closed}, {"keep", RootMotion::Kept}, {"out", RootMotion::TakenOut}},
                   "the way that the topmost node covers: closed with the rest, kept, or taken out");
    return {[options](const OperationInput& input) {
                return loop(input.curves(), input.project.root(), *options, input.listener);
            },
            nullptr};
}

RunOperation declareMirror(Command& command) {
    struct Line {
        MirrorOptions options;
        std::vector<std::string> sides;
    };
    auto line = std::make_shared<Line>();
    command.choice("--axis", line->options.axis, {{"x", 0}, {"y", 1}, {"z", 2}},
                   "the world's axis that left and right lie along");
    command
        .option("--sides", line->sides,
                "parts of names for the two sides, in place of the usual ones: Left=Right; repeatable")
        .takes("PAIR");
    return {[line](const OperationInput& input) {
                MirrorOptions options = line->options;
                if (!line->sides.empty())
                    options.sides.clear();
                for (const std::string& pair : line->sides) {
                    const std::size_t sign = pair.find('=');
                    if (sign == pair.npos || sign == 0 || sign + 1 == pair.size())
                        throw Failure(ExitCode::Usage,
                                      "'" + oneLine(pair) + "' is no pair such as Left=Right");
                    options.sides.emplace_back(pair.substr(0, sign), pair.substr(sign + 1));
                }
                return mirror(input.curves(), input.project.root(), options, input.listener);
            },
            nullptr};
}

/// In the order in which the line names them; otherwise by name.
std::vector<kaAnimationStrip*> orderedClips(const OperationInput& input) {
    std::vector<kaAnimationStrip*> clips;
    for (const std::string& name : input.selection.clips) {
        MotionSelection one;
        one.clips = {name};
        for (kaAnimationStrip* clip : selectedClips(one))
            if (std::find(clips.begin(), clips.end(), clip) == clips.end())
                clips.push_back(clip);
    }
    if (!input.selection.clips.empty())
        return clips;
    clips = input.clips();
    std::stable_sort(clips.begin(), clips.end(),
                     [](const auto* a, const auto* b) { return a->getName() < b->getName(); });
    return clips;
}

RunOperation declareMerge(Command& command) {
    auto options = std::make_shared<MergeOptions>();
    command.option("--fade", options->crossFade, "frames in which one clip passes over into the next")
        .zeroOrMore()
        .showsDefault();
    command.option("--name", options->name, "of the new clip").takes("NAME").showsDefault();
    command.flag("--remove", options->removesSources, "remove the clips that were merged");
    return {[options](const OperationInput& input) {
                return merge(orderedClips(input), *options, input.listener);
            },
            nullptr};
}

RunOperation declareSplit(Command& command) {
    struct Line {
        std::string at;
        bool keep = false;
    };
    auto line = std::make_shared<Line>();
    command.option("--at", line->at, "the frames to cut at: 100,200").takes("LIST");
    command.flag("--keep", line->keep, "keep the whole clip as well");
    return {[line](const OperationInput& input) {
                const std::vector<kaAnimationStrip*> clips = input.clips();
                if (clips.size() != 1)
                    throw Failure(ExitCode::Usage,
                                  "there are " + counted(clips.size(), "clip") + ": name one with --clip");
                if (line->at.empty())
                    throw Failure(ExitCode::Usage, "say where to cut, with --at");
                return split(clips.front(), numberList(line->at), line->keep, input.listener);
            },
            nullptr};
}

RunOperation declareRename(Command& command) {
    struct Line {
        std::string match, to;
    };
    auto line = std::make_shared<Line>();
    command
        .option("--match", line->match, "the nodes: a name, or a pattern in which * and ? stand for any text")
        .takes("PATTERN");
    command.option("--to", line->to, "their new name; * and ? stand for what those of the pattern stood for")
        .takes("NAME");
    return {[line](const OperationInput& input) {
                if (line->match.empty() || line->to.empty())
                    throw Failure(ExitCode::Usage, "say what to rename with --match, and to what with --to");
                return rename(input.project.root(), line->match, line->to, input.listener);
            },
            nullptr};
}

RunOperation declareDelete(Command&) {
    return {[](const OperationInput& input) {
                const MotionSelection& selection = input.selection;
                if (selection.clips.empty() && selection.nodes.empty() && selection.curves.empty())
                    throw Failure(ExitCode::Usage, "say what to delete with --clip, --node or --curve");
                return selection.nodes.empty() && selection.curves.empty()
                           ? removeClips(input.clips(), input.listener)
                           : removeCurves(input.curves(), input.listener);
            },
            nullptr};
}

struct RetargetLine {
    ProjectFiles source;
    std::string clip, table, name;
    std::vector<std::string> map;
    SkeletonMotion motion;
    bool isPlain = false;
};

std::vector<std::pair<std::string, std::string>> namesOf(const RetargetLine& line) {
    std::string text;
    for (const std::string& pair : line.map)
        text += pair + "\n";
    try {
        auto names = parseNameTable(text);
        if (line.table.empty())
            return names;
        std::ifstream file(line.table);
        std::stringstream content;
        content << file.rdbuf();
        if (!file)
            throw Failure(ExitCode::Unreadable, "cannot be read");
        const auto more = parseNameTable(content.str());
        names.insert(names.end(), more.begin(), more.end());
        return names;
    } catch (const Failure& failure) {
        throw line.table.empty() ? Failure(ExitCode::Usage, failure.what())
                                 : unreadable(line.table, failure.what());
    }
}

/// The source is read first and by itself, because there is one registry.
RunOperation declareRetarget(Command& command) {
    auto line = std::make_shared<RetargetLine>();
    command.option("--source", line->source.file, "whose motion is taken over: a model or a scene (.osg)")
        .takes("PATH");
    command
        .option("--source-animation", line->source.animation,
                "the animation document that goes with the source")
        .takes("PATH");
    command.option("--source-clip", line->clip, "its clip, by name or id (default: the first by name)")
        .takes("NAME");
    command
        .option("--map", line->map,
                "a node of the source and its counterpart, or patterns: 'mixamorig:*=*'; repeatable "
                "(default: names that are alike)")
        .takes("PAIR");
    command.option("--table", line->table, "a file with such pairs, a line each").takes("PATH");
    command.option("--name", line->name, "of the new clip (default: the source's)").takes("NAME");
    command.flag("--keep-rest", line->isPlain,
                 "take turns away from the rest over as they are, whatever the two rest poses");
    return {[line](const OperationInput& input) {
                if (line->source.file.empty())
                    throw Failure(ExitCode::Usage, "say whose motion to take over, with --source");
                RetargetOptions options;
                options.names = namesOf(*line);
                options.alignsLimbs = !line->isPlain;
                options.clip = line->name;
                return retarget(line->motion, input.project.root(), options, input.listener);
            },
            [line](const ProjectFiles& files, Listener& listener) {
                if (line->source.file.empty())
                    return;
                line->source.import = files.import;
                line->source.reader = files.reader;
                const Project source(line->source, listener);
                const auto objects = source.playable(line->clip);
                const std::string name =
                    objects.empty() ? "motion" : utf8FromLatin1(objects.back()->getName());
                line->motion = recordSkeleton(source.root(), curvesBelow(objects), name);
            }};
}

} // namespace

std::vector<Operation> clipOperations() {
    return {
        {"loop",
         "Make motion repeat without a jump",
         {"ka-anim loop walk.bvh --seam 12 --root out -o loop.osg --animation loop.xml"},
         "",
         declareLoop},
        {"mirror",
         "Mirror motion left and right",
         {"ka-anim mirror walk.bvh -o other.osg --animation other.xml",
          "ka-anim mirror rig.glb --sides arm_l=arm_r --sides leg_l=leg_r -o r.osg --animation r.xml"},
         "",
         declareMirror},
        {"merge",
         "Play clips one after the other in a new one",
         {"ka-anim merge takes.osg takes.xml --clip walk --clip run --fade 10 -o both.osg --animation "
          "both.xml"},
         "Clips go in the order in which --clip names them, by their names otherwise.",
         declareMerge},
        {"split",
         "Cut a clip into several",
         {"ka-anim split walk.bvh --at 100,200 -o parts.osg --animation parts.xml"},
         "",
         declareSplit},
        {"rename",
         "Rename nodes by a pattern",
         {"ka-anim rename rig.glb --match 'mixamorig:*' --to '*' -o rig.osg --animation rig.xml"},
         "",
         declareRename},
        {"delete",
         "Remove clips, or curves of some nodes",
         {"ka-anim delete walk.bvh --node '*Finger*' -o walk.osg --animation walk.xml"},
         "",
         declareDelete},
        {"retarget",
         "Move a skeleton as another one moves",
         {"ka-anim retarget rig.glb --source walk.bvh -o rig.osg --animation rig.xml",
          "ka-anim retarget rig.bvh --source hero.glb --map 'mixamorig:*=*' -o rig.osg --animation rig.xml"},
         "FILE is the skeleton that is to move, in its rest pose. Curves get a key at every frame: add "
         "--then reduce.",
         declareRetarget},
    };
}

} // namespace ka::tools
