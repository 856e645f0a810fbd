#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "TimedPages.h"

/// How much is measured.
struct Amount {
    int rounds = 15;
    int seconds = 60;
    int resets = 1000;
    int operations = 10000;
};

/// A benchmark of whole processes defines this function. main() creates a private world with a
/// display, in which the suite's files are installed, and then calls it.
void Measure(const Amount& amount, TimedPages& pages);

/// Prints one sample: the measure, the program ("Ours" or another's name), and the value.
/// bench/tabulate.py turns samples into a table.
void Report(const std::string& measure, const std::string& program, double value,
            const std::string& unit);
/// The same for a time, in milliseconds.
void Report(const std::string& measure, const std::string& program, Moment from, Moment to);

/// Empties the home folder that all of them share, so that none finds another's files.
void EmptyHome();

/// While this object lives, samples are not printed, because the first round starts with cold
/// caches.
class WarmingUp {
public:
    WarmingUp();
    ~WarmingUp();
    WarmingUp(const WarmingUp&) = delete;
    WarmingUp& operator=(const WarmingUp&) = delete;
};

/// Calls each of them once without a report, then this many times in turn. The order changes from
/// round to round.
void Interleave(int rounds, const std::vector<std::function<void()>>& programs);
