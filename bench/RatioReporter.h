#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// Prints the times of benchmarks named "what/variant", one line for each "what", with the ratio of
/// each variant to the first one.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        PrintBasicContext(&GetErrorStream(), context);
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const std::string name = run.run_name.function_name;
            const auto slash = name.rfind('/');
            const std::string what = name.substr(0, slash);
            const std::string variant = name.substr(slash + 1);
            if (std::find(order_.begin(), order_.end(), what) == order_.end())
                order_.push_back(what);
            auto& times = times_[what];
            const auto known = std::find_if(times.begin(), times.end(), [&](const auto& time) {
                return time.first == variant;
            });
            // The fastest repetition counts, because other processes disturb the others.
            const double time = run.GetAdjustedCPUTime();
            if (known == times.end())
                times.emplace_back(variant, time);
            else
                known->second = std::min(known->second, time);
        }
    }

    void Finalize() override {
        for (const std::string& what : order_) {
            const auto& times = times_[what];
            std::printf("%-34s", what.c_str());
            for (const auto& [variant, time] : times)
                std::printf("  %s %.1f ns%s", variant.c_str(), time,
                            ratio(time / times.front().second).c_str());
            std::printf("\n");
        }
    }

private:
    static std::string ratio(double value) {
        char text[32];
        std::snprintf(text, sizeof text, " (x %.2f)", value);
        return value == 1.0 ? "" : text;
    }

    std::vector<std::string> order_;
    std::map<std::string, std::vector<std::pair<std::string, double>>> times_;
};
