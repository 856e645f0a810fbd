#include "FuzzInput.h"

#include <algorithm>

FuzzInput::FuzzInput(const std::uint8_t* data, std::size_t size)
    : m_rest(reinterpret_cast<const char*>(data), size) {}

std::uint8_t FuzzInput::TakeByte() {
    if (m_rest.empty()) {
        return 0;
    }
    const auto byte = static_cast<std::uint8_t>(m_rest.front());
    m_rest.remove_prefix(1);
    return byte;
}

std::string FuzzInput::TakeLine() {
    std::string line(m_rest.substr(0, m_rest.find('\n')));
    m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
    return line;
}

std::string FuzzInput::TakeRest() {
    std::string rest(m_rest);
    m_rest = {};
    return rest;
}

ExactBytes::ExactBytes(std::string_view bytes) : m_size(bytes.size()), m_bytes(new char[m_size]) {
    bytes.copy(m_bytes.get(), m_size);
}
