// The program's own share of an operation: the time between its calls of its socket, of the engine
// and of the toolkit.

#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "MeasuredProcess.h"
#include "ProcessBenchmark.h"
#include "TemporaryFolder.h"

namespace {

struct Call {
    std::string function;
    double start;
    double end;
};

/// The calls of a traced helper.
class Trace {
public:
    [[nodiscard]] Environment Variables() const {
        return {{"LD_PRELOAD", TRACE_POINTS_PATH}, {"TK_TRACE_POINTS", m_path}};
    }

    /// The calls since the last time this was asked.
    [[nodiscard]] std::vector<Call> Take() {
        std::ifstream lines(m_path);
        std::vector<Call> calls;
        for (Call call; lines >> call.function >> call.start >> call.end;) {
            calls.push_back(call);
        }
        std::filesystem::resize_file(m_path, 0);
        return calls;
    }

private:
    const TemporaryFolder m_folder;
    const std::string m_path = m_folder.Path("calls");
};

/// The time from the end of the last call of `first` to the next call of `last`, minus the time of
/// the calls in between, in milliseconds.
double ShareBetween(const std::string& first, const std::string& last,
                    const std::vector<Call>& calls) {
    std::size_t from = calls.size();
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].function == first) {
            from = i;
        } else if (calls[i].function == last && from != calls.size()) {
            double share = calls[i].start - calls[from].end;
            for (std::size_t between = from + 1; between < i; ++between) {
                share -= calls[between].end - calls[between].start;
            }
            return share / 1e6;
        }
    }
    throw std::runtime_error("no " + last + " behind " + first);
}

/// The time in all calls of these functions, in milliseconds.
double TimeIn(const std::set<std::string>& functions, const std::vector<Call>& calls) {
    double time = 0;
    for (const Call& call : calls) {
        if (functions.count(call.function) != 0) {
            time += call.end - call.start;
        }
    }
    return time / 1e6;
}

class Shares {
public:
    explicit Shares(TimedPages& pages) : m_pages(pages) {}

    void Measure() {
        static_cast<void>(m_helper.Browse(m_pages.NewPage()));
        Await(BrowserResultType::success);

        static_cast<void>(m_helper.Browse(m_pages.NewPage()));
        const std::vector<Call> page = Await(BrowserResultType::success);
        ReportShare("operation received to the engine's load", "recv", "webkit_web_view_load_uri",
                    page);
        ReportShare("page finished to the result sent", "webkit_web_view_get_uri", "send", page);

        static_cast<void>(m_helper.BrowseForCookie(m_pages.NewPageWithCookie()));
        ReportShare("cookies told to the result sent", "webkit_cookie_manager_get_cookies_finish",
                    "send", Await(BrowserResultType::success_with_cookie));

        // The page's last events are the engine's. Without this wait the reset would wait for them.
        m_helper.Process().Settle();
        static_cast<void>(m_helper.Reset());
        const std::vector<Call> reset = Await(BrowserResultType::ready);
        ReportShare("reset received to ready sent, less the views", "recv", "send", reset);
        ReportTime("the views of a reset: one stopped and let go, one made",
                   {"webkit_web_view_stop_loading", "gtk_container_remove", "g_object_unref",
                    "webkit_web_view_new_with_context", "gtk_container_add"},
                   reset);
    }

private:
    std::vector<Call> Await(BrowserResultType result) {
        static_cast<void>(m_helper.AwaitResult(result));
        return m_trace.Take();
    }

    static void ReportShare(const std::string& measure, const std::string& first,
                            const std::string& last, const std::vector<Call>& calls) {
        Report(measure, "Ours", ShareBetween(first, last, calls), "ms");
    }

    static void ReportTime(const std::string& measure, const std::set<std::string>& functions,
                           const std::vector<Call>& calls) {
        Report(measure, "Ours", TimeIn(functions, calls), "ms");
    }

    TimedPages& m_pages;
    Trace m_trace;
    MeasuredHelper m_helper{m_trace.Variables()};
};

}  // namespace

void Measure(const Amount& amount, TimedPages& pages) {
    Shares shares(pages);
    Interleave(amount.rounds, {[&] { shares.Measure(); }});
}
