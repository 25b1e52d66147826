#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ratio.h"

namespace {

std::vector<std::pair<std::string, std::string>>& comparisons() {
    static std::vector<std::pair<std::string, std::string>> list;
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
        printf("\n%-44s %-32s %s\n", "ours", "peer", "speed ratio (peer time / our time)");
        for (auto& [ours, peer] : comparisons()) {
            if (!times.count(ours) || !times.count(peer)) continue;
            printf("%-44s %-32s %.3f\n", ours.c_str(), peer.c_str(), times[peer] / times[ours]);
        }
    }

private:
    std::map<std::string, double> times;
};

}  // namespace

void compareto(const char* ours, const char* peer) { comparisons().emplace_back(ours, peer); }

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    ratioreporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
}
