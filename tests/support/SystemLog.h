#pragma once

#include <sys/types.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "UniqueFd.h"

/// One line as it was written to the system log.
struct SystemLogRecord {
    int priority = 0;      ///< facility | severity
    std::string identity;  ///< empty when the line has none
    pid_t pid = 0;         ///< 0 when the line has none
    std::string text;      ///< what follows "identity[pid]: "
    std::string raw;
};

/// The system log of this private world: the datagram socket /dev/log, read as long as this object
/// lives. Any thread.
class SystemLog {
public:
    /// Throws std::system_error when the socket cannot be made.
    explicit SystemLog(const std::string& path = "/dev/log");
    ~SystemLog();
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;

    /// Every line so far, in order, including everything that was written before the call.
    [[nodiscard]] std::vector<SystemLogRecord> Records();

    /// The texts alone, of one identity.
    [[nodiscard]] std::vector<std::string> Texts(const std::string& identity);

    /// Blocks until a line's text contains this part. Returns false after the test deadline.
    [[nodiscard]] bool WaitFor(const std::string& part);

    /// Forgets what has come so far.
    void Clear();

private:
    void Run();
    void ReadPending();

    std::string m_path;
    CUniqueFd m_socket;
    CUniqueFd m_stop;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<SystemLogRecord> m_records;
    std::thread m_thread;
};
