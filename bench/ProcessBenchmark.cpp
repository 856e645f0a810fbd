#include "ProcessBenchmark.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

#include "Catalogs.h"
#include "InstallRoot.h"
#include "PrivateWorld.h"
#include "SystemLog.h"
#include "VirtualDisplay.h"

namespace {

namespace fs = std::filesystem;

bool isWarmingUp = false;

// In the private world this folder is empty. The suite's icon and translation go there.
void InstallSuite() {
    const fs::path root(kInstallRoot);
    fs::create_directories(root / "resources");
    fs::copy_file(WINDOW_ICON, root / "resources/vpnui128.png");
    fs::copy(SUITE_CATALOGS, root / "l10n", fs::copy_options::recursive);
}

void UseGerman() {
    UseTestLocales();
    setenv("LC_ALL", "de_DE.UTF-8", 1);
}

}  // namespace

void Report(const std::string& measure, const std::string& program, double value,
            const std::string& unit) {
    if (!isWarmingUp) {
        std::cout << measure << '\t' << program << '\t' << value << '\t' << unit << std::endl;
    }
}

void Report(const std::string& measure, const std::string& program, Moment from, Moment to) {
    Report(measure, program, std::chrono::duration<double, std::milli>(to - from).count(), "ms");
}

void EmptyHome() {
    for (const fs::directory_entry& entry : fs::directory_iterator(std::getenv("HOME"))) {
        fs::remove_all(entry.path());
    }
}

WarmingUp::WarmingUp() {
    isWarmingUp = true;
}

WarmingUp::~WarmingUp() {
    isWarmingUp = false;
}

void Interleave(int rounds, const std::vector<std::function<void()>>& programs) {
    {
        const WarmingUp warmingUp;
        for (const auto& program : programs) {
            program();
        }
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < programs.size(); ++i) {
            programs[(static_cast<std::size_t>(round) + i) % programs.size()]();
        }
    }
}

int main(int argc, char** argv) {
    Amount amount;
    CLI::App options("Measures whole processes; prints samples.");
    options.add_option("--rounds", amount.rounds, "rounds of each measurement");
    options.add_option("--seconds", amount.seconds, "how long idle processes are watched");
    options.add_option("--resets", amount.resets, "resets in one process");
    options.add_option("--operations", amount.operations, "operations in one process");
    CLI11_PARSE(options, argc, argv);
    if (!EnterPrivateWorld({})) {
        return EXIT_FAILURE;
    }
    try {
        InstallSuite();
        UseGerman();
        const SystemLog log;
        const VirtualDisplay display;
        TimedPages pages;
        Measure(amount, pages);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "ERROR: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
