// The engine's processes die or freeze under the program, wherever they can.

#include <csignal>

#include "HelperTest.h"
#include "ProcessFamily.h"
#include "WaitUntil.h"

namespace {

constexpr const char* kWebProcess = "WebKitWebProcess";
constexpr const char* kNetworkProcess = "WebKitNetworkProcess";
/// How long after the program's end its children may take for their own.
constexpr std::chrono::seconds kChildrensTime{5};

/// One moment of a load: all that the server has sent of the page, and the request that shows that
/// the engine has come so far.
struct Moment {
    std::string name;
    std::string sent;
    std::string request;
};

std::string Head() {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n\r\n";
}

/// A page without an end, whose last piece asks for something. The engine looks at a page only
/// when enough of it has come.
Moment Body(const std::string& name, const std::string& pieces, const std::string& request) {
    return {name, Head() + "<!doctype html><body>" + pieces + std::string(8000, ' '), request};
}

Moment AfterPieces(int count) {
    std::string pieces;
    for (int piece = 1; piece <= count; ++piece) {
        const std::string number = std::to_string(piece);
        pieces.append("<p>").append(3000, 'x').append("<img src='/piece").append(number + "'>");
    }
    const std::string last = std::to_string(count);
    return Body("after piece " + last, pieces, "/piece" + last);
}

/// Thirteen, by what has come of the page.
std::vector<Moment> MomentsOfTransfer() {
    std::vector<Moment> moments{{"before the response", "", "/page"},
                                {"in the status line", "HTTP/1.1 2", "/page"},
                                {"in the header", "HTTP/1.1 200 OK\r\nContent-Ty", "/page"},
                                {"after the header", Head(), "/page"},
                                {"in the first tag", Head() + "<!doc", "/page"}};
    for (int count = 1; count <= 8; ++count) {
        moments.push_back(AfterPieces(count));
    }
    return moments;
}

/// Seven, by what the page waits for or does.
std::vector<Moment> MomentsOfThePage() {
    return {Body("at a style sheet", "<link rel=stylesheet href='/part'>", "/part"),
            Body("at a script", "<script src='/part'></script>", "/part"),
            Body("in a frame", "<iframe src='/part'></iframe>", "/part"),
            Body("in a fetch", "<script>fetch('/part')</script>", "/part"),
            Body("in a synchronous request",
                 "<script>const x = new XMLHttpRequest; x.open('GET', '/part', false); "
                 "x.send()</script>",
                 "/part"),
            Body("in a worker", "<script>new Worker('/part')</script>", "/part"),
            Body("in an endless script",
                 "<script>navigator.sendBeacon('/part', 'x'); for (;;) {}</script>", "/part")};
}

class ProcessFaults : public HelperTest {
protected:
    void SetUp() override {
        m_server.ServePage("/good", "good");
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    }

    void Signal(const std::string& program, int signal) const {
        const std::set<pid_t> processes = DescendantsRunning(m_helper.Pid(), program);
        EXPECT_FALSE(processes.empty());
        for (const pid_t process : processes) {
            kill(process, signal);
        }
    }

    /// The next operation works as if nothing had happened.
    void ExpectGoodPage() {
        BrowseTo("/good");
        EXPECT_EQ(NextResult(), "success");
    }

    /// Ends the program; its children must be gone soon after.
    void ExpectEndWithoutChildren() {
        const std::set<pid_t> children = Descendants(m_helper.Pid());
        EXPECT_FALSE(children.empty());
        EXPECT_EQ(Terminate(), "exited with status 0");
        const auto end = std::chrono::steady_clock::now();
        for (const pid_t child : children) {
            EXPECT_TRUE(PollUntil([&] { return ProgramOf(child).empty(); }));
        }
        EXPECT_LT(std::chrono::steady_clock::now() - end, kChildrensTime);
    }
};

/// The moments of a load, each in a load of its own, of one program.
class Moments : public ProcessFaults {
protected:
    /// A piece that has come is told by a request that gets its 404; a part never comes. A process
    /// that dies before the program has heard of the load's start takes the load with it, and it is
    /// asked for once more: then nothing comes.
    void ServeUpTo(const Moment& moment) {
        const std::size_t before = m_server.CountRequests("/page");
        m_server.Handle("/page", [this, before, sent = moment.sent](HttpExchange& exchange) {
            if (m_server.CountRequests("/page") > before + 1) {
                exchange.Cut();
                return;
            }
            exchange.SendRaw(sent);
            exchange.WaitForRelease();
        });
        m_server.Handle("/part", [](HttpExchange& exchange) { exchange.WaitForRelease(); });
    }

    void ExpectOneResultWhenKilledAt(const Moment& moment, const std::string& operation) {
        SCOPED_TRACE(moment.name);
        ServeUpTo(moment);
        const std::size_t before = m_server.CountRequests(moment.request);
        Send(OperationText({{"operation", operation},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/page")},
                            {"cookie_name", "sid"}}));
        ASSERT_TRUE(m_server.WaitForRequest(moment.request, before + 1));
        Signal(kWebProcess, SIGKILL);
        EXPECT_EQ(NextResult(), "error_unknown");
        ExpectGoodPage();
    }

    void ExpectOneResultWhenKilledAtEach(const std::vector<Moment>& moments,
                                         const std::string& operation) {
        for (const Moment& moment : moments) {
            ASSERT_NO_FATAL_FAILURE(ExpectOneResultWhenKilledAt(moment, operation));
        }
        ExpectEndWithoutChildren();
        EXPECT_EQ(NextResult(), "(closed)");
    }
};

}  // namespace

TEST_F(Moments, OfTransferEachEndTheOperationOnceWhenTheWebProcessDies) {
    ExpectOneResultWhenKilledAtEach(MomentsOfTransfer(), "browse");
}

TEST_F(Moments, OfThePageEachEndTheOperationOnceWhenTheWebProcessDies) {
    ExpectOneResultWhenKilledAtEach(MomentsOfThePage(), "browse");
}

TEST_F(Moments, OfThePageEachEndACookieOperationOnceToo) {
    ExpectOneResultWhenKilledAtEach(MomentsOfThePage(), "browse_for_cookie");
}

TEST_F(ProcessFaults, AFrozenWebProcessDoesNotHoldUpTheTimeout) {
    m_server.ServeHalfUntilRelease("/half", {200, "<img src='/x'>" + std::string(8000, ' ')});
    BrowseTo("/half", "1");
    ASSERT_TRUE(m_server.WaitForRequest("/x"));
    Signal(kWebProcess, SIGSTOP);
    EXPECT_EQ(NextResult(), "error_timeout");
    ExpectGoodPage();
    ExpectEndWithoutChildren();
}

TEST_F(ProcessFaults, AFrozenWebProcessDoesNotOutliveTheProgram) {
    ExpectGoodPage();
    Signal(kWebProcess, SIGSTOP);
    ExpectEndWithoutChildren();
}

TEST_F(ProcessFaults, AFrozenNetworkProcessDoesNotOutliveTheProgram) {
    ExpectGoodPage();
    Signal(kNetworkProcess, SIGSTOP);
    ExpectEndWithoutChildren();
}

TEST_F(ProcessFaults, AFrozenNetworkProcessDoesNotHoldUpTheTimeout) {
    ExpectGoodPage();
    Signal(kNetworkProcess, SIGSTOP);
    BrowseTo("/good", "1");
    EXPECT_EQ(NextResult(), "error_timeout");
    Signal(kNetworkProcess, SIGCONT);
    ExpectGoodPage();
}

// It sleeps in each of them, but never where it would notice the program's end.
TEST_F(ProcessFaults, AnEndlessRowOfSynchronousRequestsDoesNotOutliveTheProgram) {
    m_server.ServeOnRelease("/held", {});
    m_server.ServePage("/endless",
                       "<script>for (;;) { try { const request = new XMLHttpRequest; "
                       "request.open('GET', '/held', false); request.send(); } catch (error) {} }"
                       "</script>");
    BrowseTo("/endless", "1");
    ASSERT_TRUE(m_server.WaitForRequest("/held"));
    EXPECT_EQ(NextResult(), "error_timeout");
    ExpectEndWithoutChildren();
}

TEST_F(ProcessFaults, AnEndlessScriptDoesNotOutliveTheProgram) {
    m_server.ServePage("/endless",
                       "<script>navigator.sendBeacon('/running', 'x'); for (;;) {}</script>");
    BrowseTo("/endless", "1");
    ASSERT_TRUE(m_server.WaitForRequest("/running"));
    EXPECT_EQ(NextResult(), "error_timeout");
    ExpectEndWithoutChildren();
}
