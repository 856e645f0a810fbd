// How often an idle process wakes up, and how much processor time it uses, when its window is
// hidden after a result. The floor program is measured over the same time.

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "ProcessFamily.h"

namespace {

namespace fs = std::filesystem;

// The work that follows a page's end, such as collecting garbage and closing connections, is not
// idling.
constexpr std::chrono::seconds kRest{5};

// The engine's timers come irregularly, so one minute of one process tells little.
constexpr int kPairs = 5;

struct Activity {
    long wakeUps = 0;
    double milliseconds = 0;
};

// The key is the number of the thread. No two threads have the same number, even in different
// processes.
using Activities = std::map<std::string, Activity>;

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

Activities ActivitiesOf(const std::set<pid_t>& processes) {
    Activities activities;
    for (const pid_t process : processes) {
        const fs::path folder = "/proc/" + std::to_string(process) + "/task";
        std::error_code error;
        for (const auto& thread : fs::directory_iterator(folder, error)) {
            activities[thread.path().filename()] = ActivityOfThread(thread.path());
        }
    }
    return activities;
}

// What the present threads have done since. Threads that ended in between are not counted.
Activity Difference(const Activities& before, const Activities& after) {
    Activity sum;
    for (const auto& [thread, activity] : after) {
        const auto earlier = before.find(thread);
        const Activity start = earlier != before.end() ? earlier->second : Activity{};
        sum.wakeUps += activity.wakeUps - start.wakeUps;
        sum.milliseconds += activity.milliseconds - start.milliseconds;
    }
    return sum;
}

/// One program under observation.
class Watched {
public:
    Watched(std::string name, pid_t process)
        : m_name(std::move(name)),
          m_process(process),
          m_own(ActivitiesOf({process})),
          m_engine(ActivitiesOf(Descendants(process))) {}

    void ReportSince() const {
        ReportActivity("the process", Difference(m_own, ActivitiesOf({m_process})));
        ReportActivity("the engine's processes",
                       Difference(m_engine, ActivitiesOf(Descendants(m_process))));
    }

private:
    void ReportActivity(const std::string& whose, const Activity& activity) const {
        Report("wake-ups of " + whose + " while idle", m_name,
               static_cast<double>(activity.wakeUps), "");
        Report("time of " + whose + " while idle", m_name, activity.milliseconds, "ms");
    }

    std::string m_name;
    pid_t m_process;
    Activities m_own;
    Activities m_engine;
};

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    std::vector<std::unique_ptr<MeasuredHelper>> helpers;
    std::vector<std::unique_ptr<MeasuredFloor>> floors;
    for (int pair = 0; pair < kPairs; ++pair) {
        MeasuredHelper& helper = *helpers.emplace_back(std::make_unique<MeasuredHelper>());
        helper.Browse(pages.NewPage());
        static_cast<void>(helper.AwaitResult(BrowserResultType::success));
        MeasuredFloor& floor = *floors.emplace_back(
            std::make_unique<MeasuredFloor>(std::vector<std::string>{pages.NewPage()}));
        static_cast<void>(floor.AwaitLine("ready"));
        static_cast<void>(floor.AwaitLine("finished"));
    }
    // The measurement is of nothing happening, so there is no event to wait for.
    std::this_thread::sleep_for(std::min(kRest, std::chrono::seconds(amount.seconds)));
    std::vector<Watched> all;
    for (const auto& helper : helpers) {
        all.emplace_back("Ours", helper->Process().Pid());
    }
    for (const auto& floor : floors) {
        all.emplace_back("Floor", floor->Process().Pid());
    }
    // The measured time. Nothing happens in it either.
    std::this_thread::sleep_for(std::chrono::seconds(amount.seconds));
    for (const Watched& watched : all) {
        watched.ReportSince();
    }
}
