// A document from the helper, read as a result by the agent's side.

#include <algorithm>
#include <string>

#include "BrowserDataModel.h"
#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "LogCapture.h"

namespace {

constexpr std::size_t kLongestDocument = 4096;

void CheckRefused(const CBrowserResult& result, const LogCapture& log) {
    const bool isMalformed = result.GetResultType() == BrowserResultType::cancel;
    TK_CHECK(isMalformed || result.GetResultType() == BrowserResultType::undefined);
    TK_CHECK(result.GetCookieValue() == std::string("untouched"));
    const std::vector<std::string> lines = log.Lines();
    TK_CHECK(lines.size() == 1);
    TK_CHECK((lines[0] == "E Undefined browser result type.") == !isMalformed);
}

void CheckWritten(const CBrowserResult& result) {
    std::string json;
    TK_CHECK(result.Serialize(json));
    TK_CHECK(json.find('\n') == json.size() - 1);

    CBrowserResult again;
    TK_CHECK(again.Deserialize(json));
    TK_CHECK(again.GetResultType() == result.GetResultType());
    TK_CHECK(again.GetCookieValue() == std::string(result.GetCookieValue()));
    std::string jsonAgain;
    TK_CHECK(again.Serialize(jsonAgain));
    TK_CHECK(jsonAgain == json);
}

/// A text as documents contain it.
std::string Escaped(const std::string& text) {
    const std::string special = "\b\f\n\r\t\"\\/";
    const std::string letters = "bfnrt\"\\/";
    std::string escaped;
    for (const char character : text) {
        const std::size_t index = special.find(character);
        if (index != std::string::npos) {
            escaped += std::string("\\") + letters[index];
        } else if (static_cast<unsigned char>(character) < 0x20) {
            const char* const digits = "0123456789ABCDEF";
            escaped += std::string("\\u00") + digits[character / 16] + digits[character % 16];
        } else {
            escaped += character;
        }
    }
    return escaped;
}

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<unsigned char>(character) < 0x80; });
}

/// A cookie's value is written with all of its bytes, whatever they are.
void CheckValue(const std::string& value) {
    std::string json;
    TK_CHECK(CBrowserResult(BrowserResultType::success_with_cookie, value).Serialize(json));
    const std::string member = value.empty() ? "" : ",\"cookie_value\":\"" + Escaped(value) + "\"";
    TK_CHECK(json == "{\"result\":\"success_with_cookie\"" + member + "}\n");

    CBrowserResult again;
    const bool isRead = again.Deserialize(json);
    TK_CHECK(isRead || !IsAscii(value));
    TK_CHECK(!isRead || again.GetCookieValue() == value.substr(0, value.find('\0')));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string json = FuzzInput(data, std::min(size, kLongestDocument)).TakeRest();
    {
        const LogCapture log;
        CBrowserResult result(BrowserResultType::cancel, "untouched");
        if (result.Deserialize(json)) {
            CheckWritten(result);
            TK_CHECK(log.Records().empty());
        } else {
            CheckRefused(result, log);
        }
    }
    CheckValue(json);
    return 0;
}
