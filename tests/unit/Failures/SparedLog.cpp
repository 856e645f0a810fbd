#include "SparedLog.h"

#include <algorithm>
#include <mutex>

#include "FailingCalls.h"

class SparedLog::Store {
public:
    void Add(std::string line) {
        std::replace(line.begin(), line.end(), '\n', ' ');
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_lines.push_back(std::move(line));
    }

    std::vector<std::string> Lines() const {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

namespace {

template <class Store>
class SparedLogger : public ILogger {
public:
    explicit SparedLogger(std::shared_ptr<Store> store) : m_store(std::move(store)) {}

    ResultCode Log(std::uint32_t /*severity*/, const char* text, const char* /*messageName*/,
                   std::uint32_t /*messageId*/, std::uint32_t level) override {
        const SparedCalls spared;
        m_store->Add(std::string(1, static_cast<char>(level)) + " " + text);
        return kSuccess;
    }

private:
    std::shared_ptr<Store> m_store;
};

}  // namespace

SparedLog::SparedLog()
    : m_store(std::make_shared<Store>()),
      m_log(m_result, "test", new SparedLogger<Store>(m_store)) {}

std::vector<std::string> SparedLog::Lines() const {
    return m_store->Lines();
}
