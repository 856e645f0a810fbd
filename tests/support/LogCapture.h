#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AppLog.h"

/// One record as the sink received it.
struct CapturedRecord {
    std::uint32_t severity;
    std::string text;
    std::string messageName;
    std::uint32_t messageId;
    char level;
};

/// Keeps the log's records as long as it lives. Records may come from any thread. There must be no
/// other sink in the process meanwhile.
class LogCapture {
public:
    LogCapture();

    /// Every record so far, in order.
    [[nodiscard]] std::vector<CapturedRecord> Records() const;

    /// Every record so far as "E message", without function, file and line. A failed call reads as
    /// "E invoked function returned 0xFE000002". The records of how operations begin and end are
    /// left out.
    [[nodiscard]] std::vector<std::string> Lines() const;

    /// Those records alone, with "N ms" in place of the time.
    [[nodiscard]] std::vector<std::string> JournalLines() const;

    /// The function or the line that each record names, in order.
    [[nodiscard]] std::vector<std::string> Functions() const { return Fields("Function: "); }
    [[nodiscard]] std::vector<std::string> SourceLines() const { return Fields("Line: "); }

    /// Blocks until at least this many records have come. Returns false after the test deadline.
    [[nodiscard]] bool WaitForRecords(std::size_t count) const;

    /// Forgets what has come so far.
    void Clear();

private:
    [[nodiscard]] std::vector<std::string> Fields(const char* label) const;

    class Store;
    std::shared_ptr<Store> m_store;
    ResultCode m_result = 0;
    CAppLog m_log;
};
