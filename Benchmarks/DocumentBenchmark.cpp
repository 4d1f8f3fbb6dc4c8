#include "ChildProcess.h"
#include "Workload.h"

#include <QDomDocument>
#include <QFile>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <kaAnimationManager.h>
#include <string>

namespace {

constexpr int Curves = 18000;
constexpr int KeysPerCurve = 10;

void writeFlags(std::ostream& out) {
    out << "active=\"1\" repeating=\"0\" flipped=\"0\" motionBlur=\"0\"";
}

void writePoint(std::ostream& out, int id, int key) {
    const int x = key * 10;
    out << " <point id=\"" << id << "\" typeID=\"1\" tangentType=\"16\" tangentLengthMode=\"64\">\n"
        << "  <position>" << x << ".000000 " << key % 7 << ".500000</position>\n"
        << "  <inTangent>" << x - 4 << ".000000 " << key % 7 << ".250000</inTangent>\n"
        << "  <outTangent>" << x + 3 << ".000000 " << key % 7 << ".750000</outTangent>\n </point>\n";
}

/// A flat document of about a million elements, reference and coordinate children included: fields, keys,
/// curves and blocks of three curves.
std::string writeDocument() {
    const std::string path = std::filesystem::temp_directory_path() / "ka-bench-document.xml";
    std::ofstream out(path);
    const int keys = Curves * KeysPerCurve;
    const int firstCurve = Curves + keys + 1;
    out << "<!DOCTYPE ORVA>\n<AnimationPool objects=\"" << Curves * 2 + keys + Curves / 3 << "\">\n";
    for (int i = 0; i < Curves; ++i)
        out << " <field id=\"" << i + 1
            << "\" typeID=\"-1\" fcID=\"0\" name=\"translation\" attribute=\"translationX\" "
            << "value=\"0\" valuePos=\"0\" dirty=\"0\"/>\n";
    for (int i = 0; i < keys; ++i)
        writePoint(out, Curves + 1 + i, i % KeysPerCurve);
    for (int i = 0; i < Curves; ++i) {
        out << " <curve id=\"" << firstCurve + i << "\" typeID=\"2\" name=\"translationX\" field=\"" << i + 1
            << "\" ";
        writeFlags(out);
        out << " parentNodeID=\"0\">\n";
        for (int k = 0; k < KeysPerCurve; ++k)
            out << "  <point id=\"" << Curves + 1 + i * KeysPerCurve + k << "\"/>\n";
        out << " </curve>\n";
    }
    for (int i = 0; i < Curves / 3; ++i) {
        out << " <block id=\"" << firstCurve + Curves + i << "\" typeID=\"3\" name=\"Block\" ";
        writeFlags(out);
        out << ">\n";
        for (int k = 0; k < 3; ++k)
            out << "  <block id=\"" << firstCurve + i * 3 + k << "\"/>\n";
        out << " </block>\n";
    }
    out << "</AnimationPool>\n";
    return path;
}

const std::string& document() {
    static const std::string path = writeDocument();
    return path;
}

void report(benchmark::State& state, const Measured& measured) {
    state.SetIterationTime(measured.seconds);
    state.counters["MB"] = measured.peakMegabytes;
}

void load() {
    kaAnimationManager::the()->loadAnimations(QString::fromStdString(document()), true);
}

void bareSetContent(benchmark::State& state) {
    for (auto _ : state)
        report(state, measureInChild([] { document(); },
                                     [] {
                                         QFile file(QString::fromStdString(document()));
                                         QDomDocument dom;
                                         if (file.open(QIODevice::ReadOnly))
                                             dom.setContent(&file);
                                     }));
}

void loadDocument(benchmark::State& state) {
    for (auto _ : state)
        report(state, measureInChild([] { document(); }, &load));
}

void saveDocument(benchmark::State& state) {
    for (auto _ : state)
        report(state, measureInChild(&load, [] {
                   const std::string target = document() + ".saved";
                   kaAnimationManager::the()->saveAnimations(target.c_str());
                   std::remove(target.c_str());
               }));
}

BENCHMARK(bareSetContent)->UseManualTime()->Iterations(1)->Apply(workload::compared);
BENCHMARK(loadDocument)->UseManualTime()->Iterations(1)->Apply(workload::compared);
BENCHMARK(saveDocument)->UseManualTime()->Iterations(1)->Apply(workload::compared);

} // namespace
