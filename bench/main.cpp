#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ratio.h"

namespace {

using pairs = std::vector<std::pair<std::string, std::string>>;

pairs& comparisons() {
    static pairs list;
    return list;
}

pairs& shares() {
    static pairs list;
    return list;
}

// Keeps each benchmark's time per iteration (the median when repeated) for the closing table.
class ratioreporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.error_occurred) continue;
            bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
            if (r.run_type == Run::RT_Aggregate && !median) continue;
            std::string name = r.run_name.str();
            if (median || !times.count(name)) times[name] = r.GetAdjustedRealTime();
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        table(comparisons(), "ours", "peer", "speed ratio (peer time / our time)", false);
        table(shares(), "part", "whole", "share of the whole's time", true);
    }

private:
    std::map<std::string, double> times;

    // One line a pair that both ran: the second's time over the first's, or inverted.
    void table(const pairs& list, const char* first, const char* second, const char* what, bool inverted) {
        if (list.empty()) return;
        printf("\n%-44s %-32s %s\n", first, second, what);
        for (auto& [a, b] : list) {
            if (!times.count(a) || !times.count(b)) continue;
            double ratio = inverted ? times[a] / times[b] : times[b] / times[a];
            printf("%-44s %-32s %.3f\n", a.c_str(), b.c_str(), ratio);
        }
    }
};

}  // namespace

void compareto(const char* ours, const char* peer) { comparisons().emplace_back(ours, peer); }

void shareof(const char* part, const char* whole) { shares().emplace_back(part, whole); }

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    ratioreporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
