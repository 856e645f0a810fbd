#include "LogCapture.h"

#include <condition_variable>
#include <mutex>
#include <string_view>

#include "EventMessages.h"
#include "JournalRecords.h"
#include "TestDeadline.h"

class LogCapture::Store {
public:
    void Add(CapturedRecord record) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_records.push_back(std::move(record));
        // Within the lock: whoever has seen the record may end this object.
        m_changed.notify_all();
    }

    std::vector<CapturedRecord> Records() const {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return m_records;
    }

    bool WaitForRecords(std::size_t count) const {
        std::unique_lock<std::mutex> guard(m_mutex);
        return m_changed.wait_for(guard, kTestDeadline, [&] { return m_records.size() >= count; });
    }

    void Clear() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_records.clear();
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<CapturedRecord> m_records;
};

namespace {

template <class Store>
class CapturingLogger : public ILogger {
public:
    explicit CapturingLogger(std::shared_ptr<Store> store) : m_store(std::move(store)) {}

    ResultCode Log(std::uint32_t severity, const char* text, const char* messageName,
                   std::uint32_t messageId, std::uint32_t level) override {
        m_store->Add({severity, text, messageName, messageId, static_cast<char>(level)});
        return kSuccess;
    }

private:
    std::shared_ptr<Store> m_store;
};

// The part of a record behind a label, up to the end of its line.
std::string Field(const std::string& text, std::string_view label) {
    const std::size_t start = text.find(label);
    if (start == std::string::npos) {
        return "";
    }
    const std::size_t value = start + label.size();
    return text.substr(value, text.find('\n', value) - value);
}

// What stands behind the first three labelled lines.
std::string MessageOf(const std::string& text) {
    std::size_t position = 0;
    for (int line = 0; line < 3 && position != std::string::npos; ++line) {
        position = text.find('\n', position);
        position += position != std::string::npos ? 1 : 0;
    }
    return position == std::string::npos ? text : text.substr(position);
}

std::string LineOf(const CapturedRecord& record) {
    const std::string level(1, record.level);
    if (record.messageId == MID_DEBUG_RETURN_CODE) {
        const std::string code = Field(record.text, "Return Code: ");
        return level + " " + Field(record.text, "Invoked Function: ") + " returned " +
               code.substr(code.find('(') + 1, 10);
    }
    return level + " " + MessageOf(record.text);
}

bool IsOfJournal(const CapturedRecord& record) {
    return ::IsOfJournal(Field(record.text, "File: "));
}

}  // namespace

LogCapture::LogCapture()
    : m_store(std::make_shared<Store>()),
      m_log(m_result, "test", new CapturingLogger<Store>(m_store)) {}

std::vector<CapturedRecord> LogCapture::Records() const {
    return m_store->Records();
}

std::vector<std::string> LogCapture::Lines() const {
    std::vector<std::string> lines;
    for (const CapturedRecord& record : m_store->Records()) {
        if (!IsOfJournal(record)) {
            lines.push_back(LineOf(record));
        }
    }
    return lines;
}

std::vector<std::string> LogCapture::JournalLines() const {
    std::vector<std::string> lines;
    for (const CapturedRecord& record : m_store->Records()) {
        if (IsOfJournal(record)) {
            lines.push_back(WithoutTime(LineOf(record)));
        }
    }
    return lines;
}

std::vector<std::string> LogCapture::Fields(const char* label) const {
    std::vector<std::string> fields;
    for (const CapturedRecord& record : m_store->Records()) {
        fields.push_back(Field(record.text, label));
    }
    return fields;
}

bool LogCapture::WaitForRecords(std::size_t count) const {
    return m_store->WaitForRecords(count);
}

void LogCapture::Clear() {
    m_store->Clear();
}
