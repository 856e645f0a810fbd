// A process's private memory: after the start, after a page and after long use.

#include <numeric>
#include <set>

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "ProcessFamily.h"
#include "ProcessMemory.h"

namespace {

constexpr int kTenth = 10;

void ReportMemory(const std::string& measure, const std::string& program,
                  const MeasuredProcess& process) {
    process.Settle();
    Report("private memory " + measure, program,
           static_cast<double>(MemoryOf(process.Pid()).unshared), "KiB");
}

/// The processes that a page needs, and their memory.
void ReportFamily(const std::string& program, const MeasuredProcess& process) {
    std::set<pid_t> family = Descendants(process.Pid());
    family.insert(process.Pid());
    const long memory =
        std::accumulate(family.begin(), family.end(), 0L,
                        [](long sum, pid_t member) { return sum + MemoryOf(member).proportional; });
    Report("processes with a page", program, static_cast<double>(family.size()), "");
    Report("proportional memory of all with a page", program, static_cast<double>(memory), "KiB");
}

void StartHelper(TimedPages& pages, const std::string& name = "Ours",
                 const Environment& environment = {}) {
    MeasuredHelper helper(environment);
    ReportMemory("after the start", name, helper.Process());
    helper.Browse(pages.NewPage());
    static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    ReportMemory("after a page", name, helper.Process());
    ReportFamily(name, helper.Process());
}

void StartFloor(TimedPages& pages) {
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    ReportMemory("after the start", "Floor", floor.Process());
    floor.Tell("load " + pages.NewPage());
    static_cast<void>(floor.AwaitLine("finished"));
    ReportMemory("after a page", "Floor", floor.Process());
    ReportFamily("Floor", floor.Process());
}

/// Does something again and again in one process. Reports the process's memory after the first
/// tenth, which warms it up, and at the end.
void Endure(const std::string& program, const std::string& turns, int count,
            const MeasuredProcess& process, const std::function<void()>& turn) {
    const int firstTenth = (count + kTenth - 1) / kTenth;
    for (int number = 1; number <= count; ++number) {
        turn();
        if (number == firstTenth || number == count) {
            ReportMemory("after " + std::to_string(number) + " " + turns, program, process);
        }
    }
}

void EndureOperationsInHelper(TimedPages& pages, int count) {
    MeasuredHelper helper;
    Endure("Ours", "operations", count, helper.Process(), [&] {
        helper.Browse(pages.NewPage());
        static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    });
}

void EndureOperationsInFloor(TimedPages& pages, int count) {
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    Endure("Floor", "operations", count, floor.Process(), [&] {
        floor.Tell("load " + pages.NewPage());
        static_cast<void>(floor.AwaitLine("finished"));
    });
}

void EndureResetsInHelper(int count) {
    MeasuredHelper helper;
    Endure("Ours", "resets", count, helper.Process(), [&] {
        helper.Reset();
        static_cast<void>(helper.AwaitResult(BrowserResultType::ready));
    });
}

void EndureResetsInFloor(int count) {
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    Endure("Floor", "resets", count, floor.Process(), [&] {
        floor.Tell("reset");
        static_cast<void>(floor.AwaitLine("ready"));
    });
}

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    Interleave(amount.rounds, {[&] { StartHelper(pages); },
                               [&] { StartHelper(pages, kUnconfined, WithoutSandbox()); },
                               [&] { StartFloor(pages); }});
    // One process at a time, because memory that two processes share counts as private to neither.
    EndureOperationsInHelper(pages, amount.operations);
    EndureOperationsInFloor(pages, amount.operations);
    EndureResetsInHelper(amount.resets);
    EndureResetsInFloor(amount.resets);
}
