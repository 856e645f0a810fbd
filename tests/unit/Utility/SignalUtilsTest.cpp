#include "SignalUtils.h"

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <sstream>
#include <stdexcept>
#include <string>

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"
#include "WaitUntil.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Both ends of a pipe, and the set of its reading end.
class Pipe {
public:
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            throw std::runtime_error("no pipe");
        }
        m_reader.Reset(ends[0]);
        m_writer.Reset(ends[1]);
    }

    int Reader() const { return m_reader.Get(); }
    int Writer() const { return m_writer.Get(); }
    int Count() const { return std::max(Reader(), Writer()) + 1; }

    static fd_set SetOf(int descriptor) {
        fd_set set;
        FD_ZERO(&set);
        FD_SET(descriptor, &set);
        return set;
    }

private:
    CUniqueFd m_reader;
    CUniqueFd m_writer;
};

std::atomic<int> signalCount{0};

void CountSignal(int /*signalNumber*/) {
    ++signalCount;
}

std::atomic<int> pipeWriter{-1};

void WriteToPipe() {
    const ssize_t written = write(pipeWriter, "x", 1);
    static_cast<void>(written);  // a test that waits for the byte sees when it did not come
}

// A process that does not wait in a system call is there said to be running.
bool WaitsInSelect(pid_t process) {
    std::istringstream state(ReadFile("/proc/" + std::to_string(process) + "/syscall"));
    long systemCall = -1;
    state >> systemCall;
    return systemCall == SYS_select || systemCall == SYS_pselect6;
}

/// A handler for as long as it lives.
class HandlerGuard {
public:
    HandlerGuard(int signalNumber, SignalHandler handler) : m_signalNumber(signalNumber) {
        signalCount = 0;
        EXPECT_TRUE(install_sighdlr(signalNumber, handler, &m_previous));
    }
    ~HandlerGuard() {
        // Drops a signal that is still on its way, which the default action would make fatal.
        EXPECT_TRUE(install_sighdlr(m_signalNumber, SIG_IGN));
        EXPECT_TRUE(install_sighdlr(m_signalNumber, m_previous));
    }
    HandlerGuard(const HandlerGuard&) = delete;
    HandlerGuard& operator=(const HandlerGuard&) = delete;

private:
    int m_signalNumber;
    SignalHandler m_previous = nullptr;
};

// After so many signals a storm is over, so that a wait that it could draw out ends all the same.
constexpr int kLongestStorm = 20000;

void SetTimer(milliseconds interval) {
    const timeval time{0, static_cast<suseconds_t>(interval.count() * 1000)};
    const itimerval timer{time, time};
    EXPECT_EQ(setitimer(ITIMER_REAL, &timer, nullptr), 0);
}

void CountStormSignal(int /*signalNumber*/) {
    if (++signalCount == kLongestStorm) {
        SetTimer(milliseconds(0));
    }
}

/// A signal every millisecond for as long as it lives.
class SignalStorm {
public:
    SignalStorm() { SetTimer(milliseconds(1)); }
    ~SignalStorm() { SetTimer(milliseconds(0)); }
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;

private:
    HandlerGuard m_handler{SIGALRM, CountStormSignal};
};

class TkSelect : public testing::Test {
protected:
    LogCapture m_log;
    Pipe m_pipe;
    fd_set m_readSet = Pipe::SetOf(m_pipe.Reader());
};

TEST_F(TkSelect, GivesTheNumberOfReadyDescriptorsAndTheirSets) {
    ASSERT_EQ(write(m_pipe.Writer(), "x", 1), 1);
    fd_set writeSet = Pipe::SetOf(m_pipe.Writer());
    fd_set exceptionSet = Pipe::SetOf(m_pipe.Reader());
    const timeval timeout{60, 0};
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, &writeSet, &exceptionSet, &timeout), 2);
    EXPECT_TRUE(FD_ISSET(m_pipe.Reader(), &m_readSet));
    EXPECT_TRUE(FD_ISSET(m_pipe.Writer(), &writeSet));
    EXPECT_FALSE(FD_ISSET(m_pipe.Reader(), &exceptionSet));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(TkSelect, WaitsForTheTimeoutAndGivesZero) {
    const timeval timeout{0, 50000};
    const auto start = steady_clock::now();
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, &timeout), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(50));
    EXPECT_EQ(timeout.tv_usec, 50000);
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(TkSelect, PollsWithoutATimeout) {
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, nullptr), 0);
    m_readSet = Pipe::SetOf(m_pipe.Reader());
    ASSERT_EQ(write(m_pipe.Writer(), "x", 1), 1);
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, nullptr), 1);
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(TkSelect, ReportsABadDescriptorWithAndWithoutATimeout) {
    const int closed = dup(m_pipe.Reader());
    ASSERT_EQ(close(closed), 0);
    fd_set badSet = Pipe::SetOf(closed);
    const timeval timeout{60, 0};
    EXPECT_EQ(tk_select(closed + 1, &badSet, nullptr, nullptr, &timeout), -1);
    EXPECT_EQ(tk_select(closed + 1, &badSet, nullptr, nullptr, nullptr), -1);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E tk_select failed with errno: 9",
                                           "E tk_select failed with errno: 9"));
    EXPECT_THAT(m_log.Records().front().text, HasSubstr("Function: tk_select\n"));
}

TEST_F(TkSelect, ReportsABadTimeout) {
    const timeval timeout{-1, 0};
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, &timeout), -1);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E tk_select failed with errno: 22"));
}

TEST_F(TkSelect, HoldsItsDeadlineUnderAStormOfSignals) {
    const SignalStorm storm;
    const timeval timeout{0, 300000};
    const auto start = steady_clock::now();
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, &timeout), 0);
    EXPECT_GE(steady_clock::now() - start, milliseconds(300));
    EXPECT_GT(signalCount, 10);
    EXPECT_LT(signalCount, kLongestStorm);
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(TkSelect, PollsThroughAStormOfSignals) {
    const SignalStorm storm;
    while (signalCount < 300) {
        m_readSet = Pipe::SetOf(m_pipe.Reader());
        ASSERT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, nullptr), 0);
    }
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_F(TkSelect, SeesADescriptorBecomeReadyAfterInterruptions) {
    pipeWriter = m_pipe.Writer();
    const HandlerGuard handler(SIGALRM, [](int) {
        if (++signalCount == 20) {
            WriteToPipe();
        }
    });
    SetTimer(milliseconds(1));
    const timeval timeout{60, 0};
    EXPECT_EQ(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, &timeout), 1);
    SetTimer(milliseconds(0));
    EXPECT_TRUE(FD_ISSET(m_pipe.Reader(), &m_readSet));
    EXPECT_GE(signalCount, 20);
}

TEST_F(TkSelect, GivesZeroWithoutAFurtherWaitWhenInterruptedPastItsDeadline) {
    const HandlerGuard handler(SIGUSR1, CountSignal);
    const pid_t waiter = fork();
    ASSERT_GE(waiter, 0);
    if (waiter == 0) {
        const timeval timeout{2, 0};
        _exit(tk_select(m_pipe.Count(), &m_readSet, nullptr, nullptr, &timeout));
    }
    // Stopped in its wait, it finds the signal when it goes on, past its deadline. By then the
    // descriptor is ready: another look at it would find it so.
    EXPECT_TRUE(PollUntil([waiter] { return WaitsInSelect(waiter); }));
    const auto pastDeadline = steady_clock::now() + std::chrono::seconds(2);
    EXPECT_EQ(kill(waiter, SIGSTOP), 0);
    int status = 0;
    EXPECT_EQ(waitpid(waiter, &status, WUNTRACED), waiter);
    EXPECT_TRUE(WIFSTOPPED(status));
    EXPECT_EQ(kill(waiter, SIGUSR1), 0);
    EXPECT_TRUE(PollUntil([pastDeadline] { return steady_clock::now() > pastDeadline; }));
    EXPECT_EQ(write(m_pipe.Writer(), "x", 1), 1);
    EXPECT_EQ(kill(waiter, SIGCONT), 0);
    EXPECT_EQ(waitpid(waiter, &status, 0), waiter);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(InstallSighdlr, InstallsTheHandlerWithAnEmptyMaskAndNoFlags) {
    const HandlerGuard guard(SIGUSR1, CountSignal);
    EXPECT_EQ(raise(SIGUSR1), 0);
    EXPECT_EQ(signalCount, 1);
    struct sigaction action = {};
    ASSERT_EQ(sigaction(SIGUSR1, nullptr, &action), 0);
    for (const auto flag : {static_cast<unsigned>(SA_RESTART), static_cast<unsigned>(SA_NODEFER),
                            static_cast<unsigned>(SA_RESETHAND), static_cast<unsigned>(SA_SIGINFO),
                            static_cast<unsigned>(SA_ONSTACK)}) {
        EXPECT_EQ(static_cast<unsigned>(action.sa_flags) & flag, 0U);
    }
    for (int signalNumber = 1; signalNumber < NSIG; ++signalNumber) {
        EXPECT_EQ(sigismember(&action.sa_mask, signalNumber), 0) << signalNumber;
    }
}

TEST(InstallSighdlr, GivesThePreviousHandlerWhenAsked) {
    const LogCapture log;
    const HandlerGuard guard(SIGUSR1, CountSignal);
    SignalHandler previous = SIG_IGN;
    EXPECT_TRUE(install_sighdlr(SIGUSR1, SIG_IGN, &previous));
    EXPECT_EQ(previous, CountSignal);
    EXPECT_TRUE(install_sighdlr(SIGUSR1, SIG_DFL, &previous));
    EXPECT_EQ(previous, SIG_IGN);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST(InstallSighdlr, ReportsASignalThatNobodyCanHandle) {
    const LogCapture log;
    SignalHandler previous = CountSignal;
    EXPECT_FALSE(install_sighdlr(SIGKILL, CountSignal, &previous));
    EXPECT_EQ(previous, nullptr);
    EXPECT_FALSE(install_sighdlr(SIGKILL, CountSignal));
    const std::vector<CapturedRecord> records = log.Records();
    ASSERT_THAT(records, SizeIs(2));
    EXPECT_EQ(records[0].level, 'E');
    EXPECT_THAT(records[0].text, HasSubstr("Function: install_sighdlr\n"));
    EXPECT_THAT(records[0].text,
                EndsWith("Invoked Function: sigaction\n"
                         "Return Code: 22 (0x00000016)\n"
                         "Description: unknown\n"
                         "Failed to install signal handler (Invalid argument). Signal# = 9."));
}

}  // namespace
