#pragma once

#include <memory>
#include <string>
#include <vector>

#include "AppLog.h"

/// Keeps the log's records for as long as it lives, from any thread, whatever calls are failing.
/// There must be no other sink in the process at the time.
class SparedLog {
public:
    SparedLog();

    /// Every record so far, in order, as "E Function: ... text", each one line.
    [[nodiscard]] std::vector<std::string> Lines() const;

private:
    class Store;
    std::shared_ptr<Store> m_store;
    ResultCode m_result = 0;
    CAppLog m_log;
};
