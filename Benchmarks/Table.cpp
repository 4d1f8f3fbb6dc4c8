#include "Table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace {

constexpr double Curves = 10000.0;
constexpr double DestroyedObjects = 1100001.0 + 2.0;
constexpr double Micro = 1e3;

/// Without what the run adds to the name of a benchmark and its argument.
std::string baseName(std::string name) {
    for (const char* suffix : {"/iterations:", "/repeats:", "/manual_time"})
        name = name.substr(0, name.find(suffix));
    return name;
}

/// The time that other programs on the machine disturb least: that of the processor, in seconds.
double secondsOf(const benchmark::BenchmarkReporter::Run& run) {
    // Manual times are processor times of a child.
    const bool manual = run.run_name.time_type == "manual_time";
    const double time = manual ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    return time / benchmark::GetTimeUnitMultiplier(run.time_unit);
}

constexpr double NoAim = std::numeric_limits<double>::infinity();

void printRow(const Table::Row& row) {
    const char* verdict = row.measured <= row.must ? "ok" : row.isOpen ? "FAIL, open" : "FAIL";
    char aim[16] = "";
    if (row.aim != NoAim)
        std::snprintf(aim, sizeof(aim), "%g", row.aim);
    std::printf("| %-62s | %8.3g %-5s | %6g | %6s | %-10s |\n", row.what.c_str(), row.measured, row.unit,
                row.must, aim, verdict);
}

} // namespace

Table::Table() : benchmark::ConsoleReporter(OO_Tabular) {}

/// Of several repetitions the fastest counts: other programs, and other machines on the same host, only ever
/// add.
void Table::ReportRuns(const std::vector<Run>& runs) {
    std::vector<Run> shown;
    for (const Run& run : runs) {
        if (run.run_type == Run::RT_Aggregate || run.repetitions <= 1)
            shown.push_back(run);
        if (run.error_occurred || run.run_type == Run::RT_Aggregate)
            continue;
        const double nanoseconds = secondsOf(run) * 1e9;
        Result& result = _results[baseName(run.benchmark_name())];
        if (result.nanoseconds > 0.0 && result.nanoseconds <= nanoseconds)
            continue;
        result.nanoseconds = nanoseconds;
        for (const auto& counter : run.counters)
            result.counters[counter.first] = counter.second.value;
    }
    benchmark::ConsoleReporter::ReportRuns(shown);
}

/// What was not measured counts as infinitely slow.
double Table::time(const std::string& name) const {
    const auto found = _results.find(name);
    const bool known = found != _results.end() && found->second.nanoseconds > 0.0;
    return known ? found->second.nanoseconds : std::numeric_limits<double>::infinity();
}

double Table::counter(const std::string& name, const std::string& counter) const {
    const auto found = _results.find(name);
    if (found == _results.end() || found->second.counters.count(counter) == 0)
        return std::numeric_limits<double>::infinity();
    return found->second.counters.at(counter);
}

/// Frames before which something is edited, against frames before which nothing is.
void Table::addUnrelatedEdits(std::vector<Row>& rows) const {
    for (const auto& [name, edit] :
         {std::pair("selected", "unrelatedSelected"), std::pair("switched", "unrelatedSwitched"),
          std::pair("renamed", "unrelatedRenamed"), std::pair("moved", "unrelatedMoved"),
          std::pair("made and destroyed", "unrelatedMade")})
        rows.push_back({std::string("a frame after an unrelated block was ") + name + ", against none",
                        time(edit) / time("unedited"), 1.1, 1.0, "x"});
    rows.push_back({"128 blocks played, one key dragged, against none",
                    time("blocksPlayedOneDragged/128") / time("blocksPlayed/128"), 1.1, 1.0, "x"});
    rows.push_back({"128 blocks played against 60, a block",
                    time("blocksPlayed/128") / 128 / (time("blocksPlayed/60") / 60), 1.1, 1.0, "x"});
}

/// Each kind of handle against the plain formula of the same segments.
void Table::addSampleKinds(std::vector<Row>& rows) const {
    for (const std::string order : {"InOrder", "Random"})
        for (const std::string kind : {"ease", "thirds", "short", "random", "near", "step", "mixed"}) {
            const auto at = [&](const char* what) { return time(what + order + "/" + kind + "/256"); };
            const std::string named =
                kind + (order == "Random" ? " handles, random frames" : " handles, in order");
            rows.push_back({"sample one, " + named, at("sampleOne") / at("plain"), 0.45, 0.3, "x ref"});
            const double calls = counter("sampleMany" + order + "/" + kind + "/256", "frames");
            const bool isOpen = order == "Random" && (kind == "random" || kind == "near");
            rows.push_back({"sample many, " + named, at("sampleMany") / calls / at("plain"), 0.15, 0.08,
                            "x ref", isOpen});
        }
}

/// The slowest kind of handle against the fastest. Steps are left out: nothing is solved for them.
void Table::addSlowestKind(std::vector<Row>& rows) const {
    for (const std::string order : {"InOrder", "Random"}) {
        double slowest = 0.0;
        double fastest = std::numeric_limits<double>::infinity();
        for (const char* kind : {"ease", "thirds", "short", "random", "near", "mixed"}) {
            const double one = time("sampleOne" + order + "/" + kind + "/256");
            slowest = std::max(slowest, one);
            fastest = std::min(fastest, one);
        }
        const std::string frames = order == "Random" ? "random frames" : "in order";
        rows.push_back({"sample one, slowest kind of handle against fastest, " + frames, slowest / fastest,
                        1.3, NoAim, "x", true});
    }
    const double calls = counter("sampleCurvesInOrder/mixed/16", "frames");
    rows.push_back({"sample 256 curves of mixed handles at a frame",
                    time("sampleCurvesInOrder/mixed/16") / calls / time("plainInOrder/mixed/256"), 0.15, 0.08,
                    "x ref"});
}

/// Of ten times the work, in times the time.
double Table::growth(const std::string& name, int count) const {
    return time(name + '/' + std::to_string(10 * count)) / time(name + '/' + std::to_string(count));
}

/// Lists of ten times as many.
void Table::addLists(std::vector<Row>& rows) const {
    const auto add = [&](const char* what, const char* name, int count, double must, bool isOpen = false) {
        rows.push_back({what, growth(name, count), must, NoAim, "x", isOpen});
    };
    add("all of 100 000 keys dragged past where others stood, against 10 000", "dragAll", 10000, 20.0);
    add("one key dragged by frames and a sample: 100 000 keys against 10 000", "dragByFrames", 10000, 3.0);
    add("a key edited and a sample, one key at NaN: 10 000 against 1 000", "editBesideNaN", 1000, 3.0, true);
    add("addAnimationObject on one node: 100 000 blocks against 10 000", "listOnANode", 10000, 20.0, true);
    add("copy and paste of a node: 20 000 blocks against 2 000", "pasteToANode", 2000, 20.0, true);
    add("objects named uniquely: 100 000 against 10 000", "nameUniquely", 10000, 20.0);
    add("getObject(name): among 100 000 against 10 000", "findByName", 10000, 3.0);
    add("insertObject of 5 000 blocks that overlap into a clip, against 500", "insertOverlapping", 500, 20.0,
        true);
    add("clip.subObject from 5 000 tracks, against 500", "takeOutOfTracks", 500, 20.0);
    add("clips nested 100 levels deep stretched, against 10", "stretchNested", 10, 20.0);
    add("subChild by handle, 100 000 children against 10 000", "takeOffChildren", 10000, 20.0);
    add("nodes added bottom-up, 2 000 levels against 200", "chainBottomUp", 200, 20.0);
}

/// Many objects that play, and curves outside a clip.
void Table::addPlayback(std::vector<Row>& rows) const {
    rows.push_back({"a tick with 100 000 running objects, per object",
                    time("tickRunning/100000") / 1e5 / Micro, 0.6, 0.3, "us"});
    rows.push_back({"an empty tick after a million waiting objects against 100 000",
                    growth("tickAfterPeak", 100000), 3.0, NoAim, "x"});
    rows.push_back({"setID of 100 000 running objects, then destroyed, against 10 000",
                    growth("renameAndDestroyRunning", 10000), 20.0, NoAim, "x"});
    rows.push_back({"waiting objects destroyed one by one: 100 000 against 10 000",
                    growth("destroyWaiting", 10000), 20.0, NoAim, "x"});
    const auto against = [&](const char* what, const char* name) {
        rows.push_back(
            {what, time(std::string(name) + "/3000") / time("curvesOfAClip/3000"), 8.0, NoAim, "x"});
    };
    against("evaluateCurves of 3 000 curves against the same as a clip", "curvesInAList");
    against("executeMotionBlur of 3 000 curves against a frame of the clip", "curvesBlurred");
    against("3 000 curves of active blocks against the same as a clip", "curvesOfActiveBlocks");
    rows.push_back({"a frame of a track with 10 000 sequences, per sequence",
                    time("passSequences/10000") / 1e4 / Micro, 0.3, NoAim, "us"});
}

bool Table::print() const {
    const double reference = time("referenceSegment");
    const auto ratio = [&](const char* name) { return time(name) / reference; };
    const double drift = std::fabs(time("loopTenPlaying/100000") / time("loopTenPlaying/100") - 1.0);
    const double destroyed = time("destroyClip/100000");
    std::vector<Row> rows = {
        {"sample one curve, random frames, 16 keys", ratio("sampleRandom/16"), 1.3, 0.6, "x ref"},
        {"the same, 128 keys", ratio("sampleRandom/128"), 1.3, 0.6, "x ref"},
        {"the same, 1 024 keys", ratio("sampleRandom/1024"), 1.3, 0.6, "x ref"},
        {"the same, 100 000 keys", ratio("sampleRandom/100000"), 0.8, 0.6, "x ref"},
        {"sample one curve, frames in order, 16 keys", ratio("sampleInOrder/16"), 1.1, 0.5, "x ref"},
        {"the same, 1 024 keys", ratio("sampleInOrder/1024"), 1.1, 0.5, "x ref"},
        {"evaluateObject, 10 000 curves, all values change, per curve", ratio("evaluateChanging") / Curves,
         0.45, 0.3, "x ref", true},
        {"evaluateObject, 10 000 curves, no value changes, per curve", ratio("evaluateHeld") / Curves, 0.12,
         0.08, "x ref", true},
        {"loop(), 10 playing: 100 000 registered against 100, difference", drift, 0.2, NoAim, "x"},
        {"build by addObject, ascending: 100 000 keys against 10 000",
         time("buildAscending/100000") / time("buildAscending/10000"), 15.0, NoAim, "x"},
        {"build by addObject, shuffled: 100 000 keys against 10 000",
         time("buildShuffled/100000") / time("buildShuffled/10000"), 18.0, 11.0, "x"},
        {"drag one selected key of 100 000", time("dragOneOf100000") / Micro, 1000.0, 30.0, "us"},
        {"add and remove a curve in a clip of 100 000 curves", time("addAndRemoveCurve") / Micro, 1000.0,
         30.0, "us"},
        {"destroy a clip of 100 000 curves of 10 keys, per object", destroyed / DestroyedObjects / Micro, 1.0,
         NoAim, "us"},
        {"the same: 100 000 curves against 10 000", destroyed / time("destroyClip/10000"), 15.0, NoAim, "x"},
        {"load a million elements against bare setContent, time",
         time("loadDocument") / time("bareSetContent"), 0.4, 0.3, "x", true},
        {"the same, peak memory", counter("loadDocument", "MB") / counter("bareSetContent", "MB"), 0.5, 0.2,
         "x"},
        {"save it against loading it, time", time("saveDocument") / time("loadDocument"), 1.0, NoAim, "x"},
        {"memory per key, handles and registry included", counter("memoryPerKey", "bytes"), 300.0, 220.0,
         "bytes", true},
        {"getObject(id) among a million", time("findAmongAMillion"), 50.0, 15.0, "ns"},
        {"getReferencedCurves of one field among 20 000 curves", time("curvesOfAField/20000") / Micro, 20.0,
         1.0, "us"},
        // Ten times the work, in times the time.
        {"the same among 200 000", growth("curvesOfAField", 20000), 5.0, NoAim, "x"},
        {"changeFieldReferences of 100 000 fields against 10 000",
         growth("changeEveryFieldsReferences", 10000), 20.0, NoAim, "x"},
        {"checkUniqueAttributes: 100 000 nodes against 10 000", growth("makeAttributesUnique", 10000), 20.0,
         NoAim, "x"},
        {"listeners of the message bus: 100 000 against 10 000", growth("listen", 10000), 20.0, NoAim, "x"},
        {"names in the attribute list: 100 000 against 10 000", growth("nameAttributes", 10000), 20.0, NoAim,
         "x"},
        {"insertObject of 20 000 blocks on a track against 2 000", growth("insertBlocks", 2000), 16.0, 11.0,
         "x"},
        {"constant keys taken out one by one: 100 000 against 10 000", growth("removeConstantKeys", 10000),
         20.0, NoAim, "x"},
        {"keys added in descending order: 100 000 against 10 000", growth("addDescendingKeys", 10000), 20.0,
         NoAim, "x"},
        {"destroyCurve2D in list order on one node: 40 000 against 10 000",
         time("destroyListedCurves/40000") / time("destroyListedCurves/10000"), 5.0, 4.2, "x"},
        // One edit among ten times as many keys.
        {"a key recorded and a sample: 100 000 keys against 10 000", growth("record", 10000), 3.0, NoAim,
         "x"},
        {"a key set inside and a sample: 100 000 keys against 10 000", growth("setKeyInside", 10000), 3.0,
         NoAim, "x"},
        {"twenty keys dragged and a sample: 100 000 keys against 10 000", growth("dragTwenty", 10000), 3.0,
         NoAim, "x"},
    };
    addUnrelatedEdits(rows);
    addLists(rows);
    addPlayback(rows);
    addSampleKinds(rows);
    addSlowestKind(rows);
    std::printf("\nreference segment: %.1f ns a sample\n\n", reference);
    std::printf("| %-62s | %-14s | %-6s | %-6s | %-10s |\n|---|---|---|---|---|\n", "what", "measured",
                "must", "aim", "");
    bool holds = true;
    for (const Row& row : rows) {
        printRow(row);
        holds = holds && (row.measured <= row.must || row.isOpen);
    }
    return holds;
}
