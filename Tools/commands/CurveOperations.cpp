#include "commands/Operation.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaMotion/EditTime.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Filter.h>
#include <kaMotion/Reduce.h>
#include <kaMotion/Text.h>
#include <memory>

namespace ka::tools {

namespace {

RunOperation declareReduce(Command& command) {
    auto options = std::make_shared<ReduceOptions>();
    command.option("--rotation", options->rotation, "degrees that a turn may be off")
        .aboveZero(360)
        .showsDefault();
    command.option("--translation", options->translation, "units that a move may be off")
        .aboveZero()
        .showsDefault();
    command.option("--scale", options->scale, "how much a factor may be off").aboveZero().showsDefault();
    command.option("--value", options->value, "how much anything else may be off").aboveZero().showsDefault();
    command
        .option("--world", options->world,
                "units that any node may be off in the world at any frame; the bounds above then widen up to "
                "tenfold")
        .aboveZero();
    command.flag("--broken", options->allowsCorners, "allow corners where the motion has none");
    command.flag("--drop-constant", options->dropsConstant,
                 "leave out curves that only repeat what the scene holds");
    command
        .option("--hold", options->shortestHold,
                "frames from which on a standing value stays exactly as it is")
        .zeroOrMore()
        .showsDefault();
    return {[options](const OperationInput& input) {
                return reduce(input.curves(), input.project.root(), *options, input.listener);
            },
            nullptr};
}

struct FilterLine {
    bool euler = false, peaks = false;
    std::optional<double> smooth;
    LowPass lowPass;
    PeakOptions peak;
};

/// Several operations under one name.
OperationReport joined(const std::string& name, const std::vector<OperationReport>& parts) {
    OperationReport whole = parts.front();
    whole.operation = name;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        whole.changedCurves = std::max(whole.changedCurves, parts[i].changedCurves);
        whole.keysAfter = parts[i].keysAfter;
        whole.isCancelled = whole.isCancelled || parts[i].isCancelled;
        whole.measures.insert(whole.measures.end(), parts[i].measures.begin(), parts[i].measures.end());
        whole.notes.insert(whole.notes.end(), parts[i].notes.begin(), parts[i].notes.end());
    }
    return whole;
}

OperationReport filter(const FilterLine& line, const OperationInput& input) {
    if (!line.euler && !line.peaks && !line.smooth)
        throw Failure(ExitCode::Usage, "say which filters: --euler, --peaks, --smooth HERTZ");
    const CurveList curves = input.curves();
    std::vector<OperationReport> reports;
    const auto add = [&](const OperationReport& report) {
        reports.push_back(report);
        return !report.isCancelled;
    };
    if (line.euler && !add(removeFlips(curves, input.listener)))
        return joined("filter", reports);
    if (line.peaks && !add(removePeaks(curves, line.peak, input.listener)))
        return joined("filter", reports);
    LowPass lowPass = line.lowPass;
    lowPass.cutOff = line.smooth.value_or(lowPass.cutOff);
    if (line.smooth)
        add(smooth(curves, lowPass, input.listener));
    return joined("filter", reports);
}

RunOperation declareFilter(Command& command) {
    auto line = std::make_shared<FilterLine>();
    command.flag("--euler", line->euler,
                 "take flips out of rotations: each key gets the angles nearest to those before it");
    command.flag("--peaks", line->peaks, "put single keys that leap out of line back into it");
    command
        .option("--sensitivity", line->peak.sensitivity,
                "times the usual distance of the keys around from their median that makes a peak")
        .aboveZero()
        .showsDefault();
    command.option("--least-peak", line->peak.least, "no peak is less than this, in the curve's unit")
        .zeroOrMore()
        .showsDefault();
    command
        .option("--smooth", line->smooth,
                "take jitter off: hertz of which 71 % of the height is left, 13 % of twice as many")
        .aboveZero();
    command.option("--rate", line->lowPass.framesPerSecond, "frames to a second, for --smooth")
        .aboveZero()
        .showsDefault();
    return {[line](const OperationInput& input) { return filter(*line, input); }, nullptr};
}

struct ResampleLine {
    Resampling resampling;
    std::string frames;
    std::optional<double> rate;
    double framesPerSecond = 25.0;
};

/// "0:1,20:0.5".
std::vector<std::pair<double, double>> pairsOf(const std::string& text) {
    std::vector<std::pair<double, double>> pairs;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t comma = std::min(text.find(',', from), text.size());
        const std::string part = text.substr(from, comma - from);
        const std::size_t colon = part.find(':');
        const std::optional<double> first = parseNumber(part.substr(0, colon)),
                                    second = parseNumber(colon == part.npos ? "" : part.substr(colon + 1));
        if (!first || !second || !std::isfinite(*first) || !std::isfinite(*second))
            throw Failure(ExitCode::Usage, "'" + oneLine(text) + "' is no list of pairs such as 0:1,20:0.5");
        pairs.emplace_back(*first, *second);
        from = comma + 1;
    }
    return pairs;
}

RunOperation declareResample(Command& command) {
    auto line = std::make_shared<ResampleLine>();
    using Shape = Resampling::Shape;
    command.option("--every", line->resampling.every, "frames from key to key").aboveZero().showsDefault();
    command.option("--rate", line->rate, "keys to a second, in place of --every").aboveZero();
    command.option("--frame-rate", line->framesPerSecond, "frames to a second, for --rate")
        .aboveZero()
        .showsDefault();
    command.option("--frames", line->frames, "the frames themselves: 0,10,20.5").takes("LIST");
    command.choice("--shape", line->resampling.shape,
                   {{"smooth", Shape::Smooth}, {"straight", Shape::Straight}, {"step", Shape::Step}},
                   "how curves run between the keys");
    return {[line](const OperationInput& input) {
                Resampling resampling = line->resampling;
                if (line->rate)
                    resampling.every = line->framesPerSecond / *line->rate;
                if (!line->frames.empty()) {
                    resampling.frames = numberList(line->frames);
                    resampling.keepsEnds = false;
                }
                return resample(input.curves(), resampling, input.listener);
            },
            nullptr};
}

RunOperation declareTrim(Command& command) {
    struct Line {
        std::optional<double> from, to;
        bool toStart = false;
    };
    auto line = std::make_shared<Line>();
    command.option("--from", line->from, "the first frame that stays (default: the motion's own)").finite();
    command.option("--to", line->to, "the last frame that stays (default: the motion's own)").finite();
    command.flag("--to-zero", line->toStart, "move what is left, so that it begins at frame 0");
    return {[line](const OperationInput& input) {
                const CurveList curves = input.curves();
                const auto [begin, end] = frameRange({curves.begin(), curves.end()});
                return trim(curves, line->from.value_or(static_cast<double>(begin)),
                            line->to.value_or(static_cast<double>(end)), line->toStart, input.listener);
            },
            nullptr};
}

RunOperation declareRetime(Command& command) {
    struct Line {
        Retiming retiming;
        std::string map, speed;
        std::optional<double> length, fromRate, toRate;
    };
    auto line = std::make_shared<Line>();
    command.option("--scale", line->retiming.scale, "frames that one frame becomes")
        .aboveZero()
        .showsDefault();
    command.option("--shift", line->retiming.shift, "frames to move everything by").finite().showsDefault();
    command.option("--length", line->length, "frames that the motion is to take, in place of --scale")
        .aboveZero();
    const Command::Option from =
        command.option("--from-rate", line->fromRate, "frames to a second as it is").aboveZero();
    const Command::Option to =
        command.option("--to-rate", line->toRate, "frames to a second as it is to be").aboveZero();
    from.needs(to);
    to.needs(from);
    command.option("--map", line->map, "frames before and after: 0:0,10:20,30:40").takes("PAIRS");
    command.option("--speed", line->speed, "a course of speeds, frame by frame: 0:1,20:0.5").takes("PAIRS");
    return {[line](const OperationInput& input) {
                const CurveList curves = input.curves();
                Retiming retiming = line->retiming;
                if (!line->map.empty())
                    retiming.map = pairsOf(line->map);
                if (!line->speed.empty())
                    retiming.speed = pairsOf(line->speed);
                if (line->fromRate)
                    retiming.scale = *line->toRate / *line->fromRate;
                if (line->length) {
                    const auto [begin, end] = frameRange({curves.begin(), curves.end()});
                    if (!(end > begin))
                        throw Failure(ExitCode::Usage, "there is no motion that --length could stretch");
                    retiming.scale = *line->length / (static_cast<double>(end) - static_cast<double>(begin));
                }
                return retime(curves, retiming, input.listener);
            },
            nullptr};
}

RunOperation declareReverse(Command&) {
    return {[](const OperationInput& input) { return reverse(input.curves(), input.listener); }, nullptr};
}

double given(const std::optional<double>& number, const std::string& option) {
    if (!number)
        throw Failure(ExitCode::Usage, "say by how much, with " + option);
    return *number;
}

RunOperation declareOffset(Command& command) {
    auto by = std::make_shared<std::optional<double>>();
    command.option("--by", *by, "what is added to every value, in the curve's unit").finite();
    return {[by](const OperationInput& input) {
                OperationReport report =
                    changeValues(input.curves(), 1.0, given(*by, "--by"), input.listener);
                report.operation = "offset";
                return report;
            },
            nullptr};
}

RunOperation declareScale(Command& command) {
    struct Line {
        std::optional<double> by;
        double about = 0.0;
    };
    auto line = std::make_shared<Line>();
    command.option("--by", line->by, "what every value is multiplied with").finite();
    command.option("--about", line->about, "the value that stays as it is").finite().showsDefault();
    return {[line](const OperationInput& input) {
                const double by = given(line->by, "--by");
                OperationReport report =
                    changeValues(input.curves(), by, line->about * (1.0 - by), input.listener);
                report.operation = "scale";
                return report;
            },
            nullptr};
}

Operation reduceOperation() {
    return {
        "reduce",
        "Thin the keys of curves within a bound",
        {"ka-anim reduce walk.bvh -o walk.osg --animation walk.xml",
         "ka-anim reduce walk.osg walk.xml --world 0.1 -o thin.osg --animation thin.xml",
         "ka-anim reduce walk.bvh --node '*Arm*' --rotation 0.2 --dry-run --format json"},
        "The bounds hold at every quarter frame and at every key there was, measured on what the document "
        "holds.",
        declareReduce};
}

Operation filterOperation() {
    return {"filter",
            "Take flips, peaks and jitter out of curves",
            {"ka-anim filter walk.bvh --euler --smooth 6 -o walk.osg --animation walk.xml",
             "ka-anim filter walk.bvh --peaks --then 'reduce --rotation 1' -o thin.osg --animation thin.xml"},
            "Flips go first, then peaks, then jitter.",
            declareFilter};
}

} // namespace

std::vector<double> numberList(const std::string& text) {
    std::vector<double> numbers;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t comma = std::min(text.find(',', from), text.size());
        const std::optional<double> number = parseNumber(text.substr(from, comma - from));
        if (!number || !std::isfinite(*number))
            throw Failure(ExitCode::Usage, "'" + oneLine(text) + "' is no list of numbers with commas");
        numbers.push_back(*number);
        from = comma + 1;
    }
    return numbers;
}

std::vector<Operation> curveOperations() {
    return {
        reduceOperation(),
        filterOperation(),
        {"resample",
         "Give curves keys at chosen frames",
         {"ka-anim resample walk.osg walk.xml --every 2 -o even.osg --animation even.xml",
          "ka-anim resample walk.bvh --rate 12 --shape step -o puppet.osg --animation puppet.xml"},
         "",
         declareResample},
        {"trim",
         "Cut motion to a range of frames",
         {"ka-anim trim walk.bvh --from 100 --to 200 --to-zero -o part.osg --animation part.xml"},
         "",
         declareTrim},
        {"retime",
         "Move, stretch and bend the time of motion",
         {"ka-anim retime walk.bvh --scale 2 -o slow.osg --animation slow.xml",
          "ka-anim retime walk.bvh --speed 0:1,50:0.25,100:1 -o moment.osg --animation moment.xml"},
         "A frame f becomes scale * f + shift.",
         declareRetime},
        {"reverse",
         "Play motion backwards",
         {"ka-anim reverse walk.bvh -o back.osg --animation back.xml"},
         "",
         declareReverse},
        {"offset",
         "Add a number to the values of curves",
         {"ka-anim offset walk.bvh --curve Hips.translationY --by 10 -o high.osg --animation high.xml"},
         "",
         declareOffset},
        {"scale",
         "Multiply the values of curves",
         {"ka-anim scale walk.bvh --curve 'translation*' --by 0.01 -o metres.osg --animation metres.xml"},
         "",
         declareScale},
    };
}

} // namespace ka::tools
