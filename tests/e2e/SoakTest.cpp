// Operations of every kind at full speed with faults in between, for as long as TK_SOAK_SECONDS
// says, and what the processes take meanwhile. TK_SOAK_SAMPLES names a file for the samples.

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "Certificates.h"
#include "HelperTest.h"
#include "LoopbackPeer.h"
#include "ProcessFamily.h"
#include "ProcessMemory.h"
#include "WaitUntil.h"

namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using testing::AnyOf;
using testing::StartsWith;

// Long enough for each kind to come several times.
constexpr int kShortSoakSeconds = 10;
constexpr seconds kSampleInterval{10};
constexpr int kFaultEvery = 97;
// The engine gives back some of them only every ten minutes or so, from a hundred down to thirty.
constexpr std::size_t kMostDescriptors = 150;
constexpr int kResetEvery = 41;

seconds SoakTime() {
    const char* const given = getenv("TK_SOAK_SECONDS");
    return seconds(given != nullptr ? std::stoi(given) : kShortSoakSeconds);
}

/// What the program and the engine's processes hold at one moment.
struct Sample {
    ProcessMemory helper;
    ProcessMemory engine;
    std::size_t processes = 0;
    std::size_t descriptors = 0;
};

class Soak : public HelperTest {
protected:
    Soak() {
        m_server.ServePage("/page", "hello");
        m_server.Handle("/new", [](HttpExchange& exchange) {
            exchange.Respond(
                {200, "", "text/html", {{"Set-Cookie", "new=" + exchange.Request().target}}});
        });
        m_server.ServeOnRelease("/hang", {});
        m_server.Handle("/cut", [](HttpExchange& exchange) {
            exchange.SendRaw(
                "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n"
                "Content-Length: 1000\r\n\r\nhalf");
            exchange.Reset();
        });
    }

    /// Sends the operation of this number and takes its result.
    void TakeTurn(int number) {
        if (number % kFaultEvery == 0) {
            InjectFault(number);
        } else if (number % kResetEvery == 0) {
            Send(R"({"operation":"reset"})");
            EXPECT_EQ(NextResult(), "ready");
        } else {
            Operate(number);
        }
    }

    [[nodiscard]] Sample TakeSample() const {
        Sample sample;
        sample.helper = MemoryOf(m_helper.Pid());
        for (const pid_t process : Descendants(m_helper.Pid())) {
            const ProcessMemory memory = MemoryOf(process);
            sample.engine.resident += memory.resident;
            sample.engine.proportional += memory.proportional;
            ++sample.processes;
        }
        const std::string folder = "/proc/" + std::to_string(m_helper.Pid()) + "/fdinfo";
        sample.descriptors = static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder), {}));
        return sample;
    }

private:
    void Operate(int number) {
        const std::string query = "?" + std::to_string(number);
        switch (number % 6) {
            case 0:
                Browse(m_server.Url("/missing" + query), m_server.Url("/elsewhere"));
                EXPECT_EQ(NextResult(), "error_navi");
                break;
            case 1:
                Browse(m_server.Url("/page" + query), m_server.Url("/page" + query));
                EXPECT_EQ(NextResult(), "success");
                break;
            case 2:
                BrowseForCookie("/new" + query);
                EXPECT_EQ(NextResult(), "success_with_cookie /new" + query);
                break;
            case 3:
                Browse(m_expired.Url("/"), m_expired.Url("/"));
                EXPECT_EQ(NextResult(), "error_cert");
                break;
            case 4:
                Browse(m_server.Url("/cut" + query), m_server.Url("/elsewhere"));
                EXPECT_EQ(NextResult(), "error_unknown");
                break;
            default:
                Browse("http://127.0.0.1:" + std::to_string(m_closed.Port()) + "/", "");
                EXPECT_EQ(NextResult(), "error_unknown");
        }
    }

    /// One of the processes dies during a load, a page takes too long, or a person has enough.
    void InjectFault(int number) {
        switch (number / kFaultEvery % 4) {
            case 0:
                BrowseHanging("0", "false");
                KillProcess("WebKitWebProcess");
                EXPECT_EQ(NextResult(), "error_unknown");
                break;
            case 1:
                BrowseHanging("0", "false");
                KillProcess("WebKitNetworkProcess");
                EXPECT_EQ(NextResult(), "error_unknown");
                break;
            case 2:
                BrowseHanging("1", "false");
                EXPECT_EQ(NextResult(), "error_timeout");
                break;
            default:
                BrowseHanging("0", "true");
                m_screen.Close(AwaitWindow());
                EXPECT_EQ(NextResult(), "cancel");
        }
    }

    void Browse(const std::string& url, const std::string& finalUrl) {
        Send(OperationText({{"operation", "browse"}, {"url", url}, {"final_url", finalUrl}}));
    }

    void BrowseForCookie(const std::string& target) {
        Send(OperationText({{"operation", "browse_for_cookie"},
                            {"url", m_server.Url(target)},
                            {"final_url", m_server.Url("/elsewhere")},
                            {"cookie_name", "new"}}));
    }

    void BrowseHanging(const std::string& timeout, const std::string& show) {
        const std::size_t before = m_server.CountRequests("/hang");
        Send(OperationText({{"operation", "browse"},
                            {"timeout", timeout},
                            {"show", show},
                            {"url", m_server.Url("/hang")},
                            {"final_url", m_server.Url("/elsewhere")}}));
        ASSERT_TRUE(m_server.WaitForRequest("/hang", before + 1));
    }

    void KillProcess(const std::string& program) {
        for (const pid_t process : Descendants(m_helper.Pid())) {
            if (ProgramOf(process) == program) {
                kill(process, SIGKILL);
            }
        }
    }

    HttpServer m_expired{TestCertificate("expired")};
    ClosedPort m_closed;
};

void Write(std::ostream& out, long second, int operations, const Sample& sample) {
    out << second << ',' << operations << ',' << sample.helper.resident << ','
        << sample.helper.proportional << ',' << sample.engine.proportional << ','
        << sample.processes << ',' << sample.descriptors << std::endl;
}

}  // namespace

TEST_F(Soak, GivesEveryResultAndLeavesNothingBehind) {
    ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady());
    const char* const file = getenv("TK_SOAK_SAMPLES");
    std::ofstream samples(file != nullptr ? file : "/dev/null");
    samples << "second,operations,helper_rss_kib,helper_pss_kib,engine_pss_kib,processes,"
               "descriptors\n";
    int operations = 0;
    // Every kind has been there once before the first look.
    while (operations < 2 * kFaultEvery && !HasFailure()) {
        TakeTurn(++operations);
    }
    const Sample first = TakeSample();
    const auto start = steady_clock::now();
    auto nextSample = start;
    while (steady_clock::now() - start < SoakTime() && !HasFailure()) {
        if (steady_clock::now() >= nextSample) {
            const auto passed = std::chrono::duration_cast<seconds>(steady_clock::now() - start);
            const Sample sample = TakeSample();
            Write(samples, passed.count(), operations, sample);
            ASSERT_LE(sample.descriptors, kMostDescriptors);
            nextSample += kSampleInterval;
        }
        TakeTurn(++operations);
    }
    std::cout << "operations: " << operations << std::endl;
    ASSERT_FALSE(HasFailure()) << "in operation " << operations;
    EXPECT_TRUE(PollUntil([&] { return TakeSample().processes <= first.processes; }));
    for (const pid_t process : Descendants(m_helper.Pid())) {
        EXPECT_THAT(ProgramOf(process), AnyOf(StartsWith("WebKit"), "bwrap", "xdg-dbus-proxy"));
    }
    EXPECT_EQ(Terminate(), "exited with status 0");
}
