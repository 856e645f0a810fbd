#include "ExceptionText.h"

#include <algorithm>
#include <boost/system/system_error.hpp>
#include <string_view>

namespace {

// The text ends with the error's message, behind which newer versions of Boost append "
// [system:24]".
std::string_view UpToMessage(std::string_view text, const boost::system::error_code& code) {
    std::array<char, 256> buffer{};
    const std::string_view message = code.message(buffer.data(), buffer.size());
    const std::size_t start = text.rfind(message);
    return start != std::string_view::npos ? text.substr(0, start + message.size()) : text;
}

}  // namespace

CExceptionText::CExceptionText(const std::exception& error) noexcept {
    std::string_view text = error.what();
    if (const auto* const failure = dynamic_cast<const boost::system::system_error*>(&error)) {
        text = UpToMessage(text, failure->code());
    }
    text.copy(m_text.data(), m_text.size() - 1);
}
