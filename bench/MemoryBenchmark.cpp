// The memory that is a process's own: after the start, after a page, and after long use.

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "ProcessMemory.h"

namespace {

constexpr int kTenth = 10;

/// In KiB, when the process has come to rest.
long PrivateMemory(const MeasuredProcess& process) {
    process.Settle();
    return MemoryOf(process.Pid()).unshared;
}

void ReportMemory(const std::string& measure, const std::string& program,
                  const MeasuredProcess& process) {
    Report("private memory " + measure, program, static_cast<double>(PrivateMemory(process)),
           "KiB");
}

void StartHelper(TimedPages& pages) {
    MeasuredHelper helper;
    ReportMemory("after the start", "Ours", helper.Process());
    helper.Browse(pages.NewPage());
    static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    ReportMemory("after a page", "Ours", helper.Process());
}

void StartFloor(TimedPages& pages) {
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    ReportMemory("after the start", "Floor", floor.Process());
    floor.Tell("load " + pages.NewPage());
    static_cast<void>(floor.AwaitLine("finished"));
    ReportMemory("after a page", "Floor", floor.Process());
}

/// Does something over and over in one process. What the first tenth took is the process's warming
/// up; what each turn behind it took tells whether memory stays level.
void Endure(const std::string& program, const std::string& turns, int count,
            const MeasuredProcess& process, const std::function<void()>& turn) {
    const int firstTenth = (count + kTenth - 1) / kTenth;
    long warm = 0;
    for (int number = 1; number <= count; ++number) {
        turn();
        if (number == firstTenth) {
            warm = PrivateMemory(process);
        }
    }
    const long end = PrivateMemory(process);
    const std::string times = std::to_string(count) + " " + turns;
    Report("private memory after " + times, program, static_cast<double>(end), "KiB");
    Report("growth with each of the last nine tenths of " + times, program,
           static_cast<double>(end - warm) / (count - firstTenth), "KiB");
}

void EndureOperations(TimedPages& pages, int count) {
    MeasuredHelper helper;
    Endure("Ours", "operations", count, helper.Process(), [&] {
        helper.Browse(pages.NewPage());
        static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    });
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    Endure("Floor", "operations", count, floor.Process(), [&] {
        floor.Tell("load " + pages.NewPage());
        static_cast<void>(floor.AwaitLine("finished"));
    });
}

void EndureResets(int count) {
    MeasuredHelper helper;
    Endure("Ours", "resets", count, helper.Process(), [&] {
        helper.Reset();
        static_cast<void>(helper.AwaitResult(BrowserResultType::ready));
    });
    MeasuredFloor floor;
    static_cast<void>(floor.AwaitLine("ready"));
    Endure("Floor", "resets", count, floor.Process(), [&] {
        floor.Tell("reset");
        static_cast<void>(floor.AwaitLine("ready"));
    });
}

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    Interleave(amount.rounds, {[&] { StartHelper(pages); }, [&] { StartFloor(pages); }});
    EndureOperations(pages, amount.operations);
    EndureResets(amount.resets);
}
