// A document from the agent, read as an operation.

#include <algorithm>
#include <cstring>
#include <string>

#include "BrowserDataModel.h"
#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "JsonIpcFrame.h"
#include "LogCapture.h"

namespace {

CBrowserOperation Untouched() {
    return {BrowserOperationType::reset, true, 4711, "u", "f", "c", "e", "a", "t"};
}

bool HaveEqualAddresses(const CBrowserOperation& left, const CBrowserOperation& right) {
    return std::strcmp(left.GetUrl(), right.GetUrl()) == 0 &&
           std::strcmp(left.GetFinalUrl(), right.GetFinalUrl()) == 0 &&
           std::strcmp(left.GetCookieName(), right.GetCookieName()) == 0 &&
           std::strcmp(left.GetErrorCookieName(), right.GetErrorCookieName()) == 0 &&
           std::strcmp(left.GetUserAgent(), right.GetUserAgent()) == 0;
}

/// Only the two kinds of browsing carry the window's look, and only one of them the time limit.
bool HaveEqualLooks(const CBrowserOperation& left, const CBrowserOperation& right) {
    return left.GetShow() == right.GetShow() &&
           std::strcmp(left.GetTitle(), right.GetTitle()) == 0 &&
           (left.GetOperationType() != BrowserOperationType::browse ||
            left.GetTimeout() == right.GetTimeout());
}

bool IsBrowsing(const CBrowserOperation& operation) {
    return operation.GetOperationType() == BrowserOperationType::browse ||
           operation.GetOperationType() == BrowserOperationType::browse_for_cookie;
}

void CheckRefused(const CBrowserOperation& operation, const LogCapture& log) {
    const CBrowserOperation untouched = Untouched();
    const bool isMalformed = operation.GetOperationType() == BrowserOperationType::reset;
    TK_CHECK(isMalformed || operation.GetOperationType() == BrowserOperationType::undefined);
    TK_CHECK(HaveEqualAddresses(operation, untouched) && HaveEqualLooks(operation, untouched));
    TK_CHECK(operation.GetTimeout() == untouched.GetTimeout());
    const std::vector<std::string> lines = log.Lines();
    TK_CHECK(lines.size() == 1);
    TK_CHECK((lines[0] == "E Undefined browser operation type.") == !isMalformed);
}

void CheckWritten(const CBrowserOperation& operation) {
    std::string json;
    TK_CHECK(operation.Serialize(json));
    TK_CHECK(json.find('\n') == json.size() - 1);

    CBrowserOperation again;
    TK_CHECK(again.Deserialize(json));
    TK_CHECK(again.GetOperationType() == operation.GetOperationType());
    TK_CHECK(HaveEqualAddresses(again, operation));
    TK_CHECK(!IsBrowsing(operation) || HaveEqualLooks(again, operation));
    // Texts may contain zeros. Only the document shows what follows them.
    std::string jsonAgain;
    TK_CHECK(again.Serialize(jsonAgain));
    TK_CHECK(jsonAgain == json);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string json = FuzzInput(data, std::min(size, kMaximumPayloadLength)).TakeRest();
    const LogCapture log;
    CBrowserOperation operation = Untouched();
    if (!operation.Deserialize(json)) {
        CheckRefused(operation, log);
        return 0;
    }
    CheckWritten(operation);
    operation.Reset();
    TK_CHECK(HaveEqualAddresses(operation, CBrowserOperation()));
    TK_CHECK(log.Records().empty());
    return 0;
}
