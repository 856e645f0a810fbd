#include "TimedOutput.h"

#include <iomanip>
#include <ostream>

CTimedOutput::CTimedOutput(std::ostream& stream)
    : m_stream(stream), m_start(std::chrono::steady_clock::now()) {}

void CTimedOutput::Line(const std::string& text) {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_stream << std::fixed << std::setprecision(3) << std::setw(9) << elapsed.count() << "  "
             << text << std::endl;
}
