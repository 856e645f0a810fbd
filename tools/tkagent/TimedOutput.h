#pragma once

#include <chrono>
#include <iosfwd>
#include <mutex>
#include <string>

/// Writes lines, each with the seconds since this object was made. Any thread.
class CTimedOutput {
public:
    /// The stream must outlive this object.
    explicit CTimedOutput(std::ostream& stream);

    void Line(const std::string& text);

private:
    std::ostream& m_stream;
    std::mutex m_mutex;
    std::chrono::steady_clock::time_point m_start;
};
