#include "Table.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <benchmark/benchmark.h>

/// Runs every benchmark and prints the table of ratios; exit code 1 when a row exceeds its must.
int main(int argc, char** argv) {
    osg::osgInit(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    return table.print() ? 0 : 1;
}
