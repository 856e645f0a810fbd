// How often a process that has nothing to do wakes up, and how much of the processor it takes,
// hidden, after a result. The floor is watched over the same time.

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "ProcessFamily.h"

namespace {

namespace fs = std::filesystem;

// What follows a page's end (collected garbage, closed connections) is no idling.
constexpr std::chrono::seconds kRest{5};

struct Activity {
    long wakeUps = 0;
    double milliseconds = 0;
};

Activity operator+(const Activity& a, const Activity& b) {
    return {a.wakeUps + b.wakeUps, a.milliseconds + b.milliseconds};
}

Activity ActivityOfThread(const fs::path& folder) {
    const std::string label = "voluntary_ctxt_switches:";
    Activity activity;
    std::ifstream status(folder / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(label, 0) == 0) {
            activity.wakeUps = std::stol(line.substr(label.size()));
        }
    }
    double nanoseconds = 0;
    std::ifstream(folder / "schedstat") >> nanoseconds;
    activity.milliseconds = nanoseconds / 1e6;
    return activity;
}

Activity ActivityOf(pid_t process) {
    Activity sum;
    for (const auto& thread :
         fs::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        sum = sum + ActivityOfThread(thread.path());
    }
    return sum;
}

Activity ActivityOfEngine(pid_t process) {
    Activity sum;
    for (const pid_t descendant : Descendants(process)) {
        sum = sum + ActivityOf(descendant);
    }
    return sum;
}

/// One program under observation.
class Watched {
public:
    Watched(std::string name, pid_t process)
        : m_name(std::move(name)),
          m_process(process),
          m_own(ActivityOf(process)),
          m_engine(ActivityOfEngine(process)) {}

    void ReportSince() const {
        ReportDifference("the process", m_own, ActivityOf(m_process));
        ReportDifference("the engine's processes", m_engine, ActivityOfEngine(m_process));
    }

private:
    void ReportDifference(const std::string& whose, const Activity& before,
                          const Activity& after) const {
        Report("wake-ups of " + whose + " while idle", m_name,
               static_cast<double>(after.wakeUps - before.wakeUps), "");
        Report("time of " + whose + " while idle", m_name, after.milliseconds - before.milliseconds,
               "ms");
    }

    std::string m_name;
    pid_t m_process;
    Activity m_own;
    Activity m_engine;
};

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    MeasuredHelper helper;
    helper.Browse(pages.NewPage());
    static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    MeasuredFloor floor({pages.NewPage()});
    static_cast<void>(floor.AwaitLine("ready"));
    static_cast<void>(floor.AwaitLine("finished"));
    std::this_thread::sleep_for(std::min(kRest, std::chrono::seconds(amount.seconds)));
    const Watched ours("Ours", helper.Process().Pid());
    const Watched theirs("Floor", floor.Process().Pid());
    std::this_thread::sleep_for(std::chrono::seconds(amount.seconds));
    ours.ReportSince();
    theirs.ReportSince();
}
