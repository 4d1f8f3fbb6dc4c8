#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>
#include <vector>

/// Collects the fastest repetitions of a run and sets them against what each operation must not exceed.
class Table : public benchmark::ConsoleReporter {
  public:
    struct Row {
        std::string what;
        double measured;
        double must;
        double aim; ///< where this is going; infinite: the must says it all
        const char* unit;
        bool isOpen = false; ///< known not to hold: what bounds it stands in the README beside this file
    };

    Table();

    void ReportRuns(const std::vector<Run>& runs) override;

    /// Prints one row per rule. @return whether every row holds that is not open.
    bool print() const;

  private:
    struct Result {
        double nanoseconds = 0.0; ///< per iteration
        std::map<std::string, double> counters;
    };

    double time(const std::string& name) const;
    double counter(const std::string& name, const std::string& counter) const;
    void addUnrelatedEdits(std::vector<Row>& rows) const;
    double growth(const std::string& name, int count) const;
    void addSampleKinds(std::vector<Row>& rows) const;
    void addSlowestKind(std::vector<Row>& rows) const;
    void addLists(std::vector<Row>& rows) const;
    void addPlayback(std::vector<Row>& rows) const;

    std::map<std::string, Result> _results;
};
