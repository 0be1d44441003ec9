// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <vector>

// What the programs that measure one part have in common: medians of things measured in turn, and the rows that
// bench.py prints too.

inline double seconds(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Median processor time of each, in milliseconds; a few rounds come first for the caches.
inline std::vector<double> medians(int rounds, const std::vector<std::function<void()>>& works) {
    std::vector<std::vector<double>> times(works.size());
    for (int round = -3; round < rounds; ++round) {
        for (std::size_t i = 0; i < works.size(); ++i) {
            const double before = seconds(CLOCK_THREAD_CPUTIME_ID);
            works[i]();
            if (round >= 0)
                times[i].push_back((seconds(CLOCK_THREAD_CPUTIME_ID) - before) * 1e3);
        }
    }
    std::vector<double> result;
    for (auto& all : times) {
        std::nth_element(all.begin(), all.begin() + static_cast<long>(all.size() / 2), all.end());
        result.push_back(all[all.size() / 2]);
    }
    return result;
}

class Rows {
public:
    // At most `most` times the floor.
    void ratio(const char* what, double kivo, double floor, const char* unit, double most) {
        const bool isGood = kivo <= most * floor;
        std::printf("%-46s %9.3f %9.3f %-5s %6.3f  <= %-6.4g %s\n", what, kivo, floor, unit, kivo / floor, most,
                    isGood ? "ok" : "OVER");
        isAllGood_ = isAllGood_ && isGood;
        std::fflush(stdout);
    }
    void absolute(const char* what, double kivo, const char* unit, double most) {
        const bool isGood = kivo <= most;
        std::printf("%-46s %9.3f %9s %-5s %6s  <= %-6.4g %s\n", what, kivo, "", unit, "", most,
                    isGood ? "ok" : "OVER");
        isAllGood_ = isAllGood_ && isGood;
        std::fflush(stdout);
    }
    int exitStatus() const { return isAllGood_ ? 0 : 1; }

private:
    bool isAllGood_ = true;
};
