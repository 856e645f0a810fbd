// From the start of a program to its first page, against the floor and against browsers.

#include <unistd.h>

#include <string>

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"

namespace {

void ReportPage(const std::string& how, const std::string& program, Moment start, TimedPages& pages,
                const std::string& url) {
    Report("start to the first page's GET, " + how, program, start, pages.AwaitRequest(url));
    Report("start to its load event, " + how, program, start, pages.AwaitLoad(url));
}

const char* HowShown(bool show) {
    return show ? "shown" : "hidden";
}

void StartHelper(TimedPages& pages, bool show, const std::string& name = "Ours",
                 const Environment& environment = {}) {
    EmptyHome();
    const std::string url = pages.NewReportingPage();
    MeasuredHelper helper(environment);
    helper.Browse(url, show);
    const Moment start = helper.Process().Start();
    Report("start to connected", name, start, helper.Connected());
    Report("start to ready", name, start, helper.Ready());
    ReportPage(HowShown(show), name, start, pages, url);
}

void StartUnconfinedHelper(TimedPages& pages) {
    StartHelper(pages, false, kUnconfined, WithoutSandbox());
}

void StartFloor(TimedPages& pages, bool show) {
    EmptyHome();
    const std::string url = pages.NewReportingPage();
    MeasuredFloor floor(show ? std::vector<std::string>{"--show", url}
                             : std::vector<std::string>{url});
    const Moment start = floor.Process().Start();
    Report("start to ready", "Floor", start, floor.AwaitLine("ready"));
    ReportPage(HowShown(show), "Floor", start, pages, url);
}

void StartBrowser(TimedPages& pages, const std::string& name, const std::string& path) {
    EmptyHome();
    const std::string url = pages.NewReportingPage();
    const MeasuredProcess browser({path, url});
    ReportPage(HowShown(true), name, browser.Start(), pages, url);
}

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    std::vector<std::function<void()>> programs{
        [&] { StartHelper(pages, false); }, [&] { StartUnconfinedHelper(pages); },
        [&] { StartFloor(pages, false); },  [&] { StartHelper(pages, true); },
        [&] { StartFloor(pages, true); },
    };
    for (const auto& [name, path] :
         {std::pair("MiniBrowser", MINI_BROWSER_PATH), std::pair("surf", "/usr/bin/surf")}) {
        if (access(path, X_OK) == 0) {
            programs.emplace_back(
                [&pages, name = name, path = path] { StartBrowser(pages, name, path); });
        }
    }
    Interleave(amount.rounds, programs);
}
