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

/// What a benchmark of whole processes has: main() makes a private world with a display, in which
/// the suite's files are installed, and calls this.
void Measure(const Amount& amount, TimedPages& pages);

/// Prints one sample: what was measured, of which program ("Ours" or another's name), and how
/// much. bench/tabulate.py makes a table of them.
void Report(const std::string& measure, const std::string& program, double value,
            const std::string& unit);
/// The same for a time, in milliseconds.
void Report(const std::string& measure, const std::string& program, Moment from, Moment to);

/// Empties the home folder that all of them share, so that none finds what another left.
void EmptyHome();

/// While it lives, samples are not printed: the first round finds everything cold.
class WarmingUp {
public:
    WarmingUp();
    ~WarmingUp();
    WarmingUp(const WarmingUp&) = delete;
    WarmingUp& operator=(const WarmingUp&) = delete;
};

/// Calls each of them once unreported, then so many times each in turn. Who comes first changes
/// from round to round.
void Interleave(int rounds, const std::vector<std::function<void()>>& programs);
