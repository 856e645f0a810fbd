// How long an operation takes in a running process. The floor program does the same directly, so
// the difference is the program's own share.

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"

namespace {

// The first pages of a new process warm it up.
constexpr int kWarmPages = 10;

constexpr char kToRequest[] = "operation to the page's GET";
constexpr char kToResult[] = "the page's GET to the result";
constexpr char kToCookie[] = "the page's GET to the cookie's result";
constexpr char kToReady[] = "reset to ready";
constexpr char kToEnd[] = "terminate to the process's end";

class Operations {
public:
    explicit Operations(TimedPages& pages) : m_pages(pages) { Check(m_floor.AwaitLine("ready")); }

    void Helper() {
        // The reset of the last round created this view. It has no process of the engine yet.
        m_helper.Browse(m_pages.NewPage());
        Check(m_helper.AwaitResult(BrowserResultType::success));

        for (int number = 0; number < kWarmPages; ++number) {
            const std::string page = m_pages.NewPage();
            const Moment sent = m_helper.Browse(page);
            const Moment result = m_helper.AwaitResult(BrowserResultType::success);
            Report(kToRequest, "Ours", sent, m_pages.AwaitRequest(page));
            Report(kToResult, "Ours", m_pages.AwaitRequest(page), result);
        }

        const std::string cookiePage = m_pages.NewPageWithCookie();
        m_helper.BrowseForCookie(cookiePage);
        const Moment cookie = m_helper.AwaitResult(BrowserResultType::success_with_cookie);
        Report(kToCookie, "Ours", m_pages.AwaitRequest(cookiePage), cookie);

        m_helper.Process().Settle();
        const Moment reset = m_helper.Reset();
        Report(kToReady, "Ours", reset, m_helper.AwaitResult(BrowserResultType::ready));
    }

    void Floor() {
        m_floor.Tell("load " + m_pages.NewPage());
        Check(m_floor.AwaitLine("finished"));

        for (int number = 0; number < kWarmPages; ++number) {
            const std::string page = m_pages.NewPage();
            const Moment sent = m_floor.Tell("load " + page);
            const Moment finished = m_floor.AwaitLine("finished");
            Report(kToRequest, "Floor", sent, m_pages.AwaitRequest(page));
            Report(kToResult, "Floor", m_pages.AwaitRequest(page), finished);
        }

        const std::string cookiePage = m_pages.NewPageWithCookie();
        m_floor.Tell("query " + cookiePage);
        Check(m_floor.AwaitLine("finished"));
        const Moment cookies = m_floor.AwaitLine("cookies");
        Report(kToCookie, "Floor", m_pages.AwaitRequest(cookiePage), cookies);

        m_floor.Process().Settle();
        const Moment reset = m_floor.Tell("reset");
        Report(kToReady, "Floor", reset, m_floor.AwaitLine("ready"));
    }

private:
    /// Only that the line came matters, not when.
    static void Check(Moment /*moment*/) {}

    TimedPages& m_pages;
    MeasuredHelper m_helper;
    MeasuredFloor m_floor;
};

void EndHelper(TimedPages& pages) {
    MeasuredHelper helper;
    helper.Browse(pages.NewPage());
    static_cast<void>(helper.AwaitResult(BrowserResultType::success));
    const Moment sent = helper.Terminate();
    Report(kToEnd, "Ours", sent, helper.Process().AwaitEnd());
}

void EndFloor(TimedPages& pages) {
    MeasuredFloor floor({pages.NewPage()});
    static_cast<void>(floor.AwaitLine("ready"));
    static_cast<void>(floor.AwaitLine("finished"));
    const Moment sent = floor.Tell("quit");
    Report(kToEnd, "Floor", sent, floor.Process().AwaitEnd());
}

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    {
        Operations operations(pages);
        Interleave(amount.rounds, {[&] { operations.Helper(); }, [&] { operations.Floor(); }});
    }
    Interleave(amount.rounds, {[&] { EndHelper(pages); }, [&] { EndFloor(pages); }});
}
