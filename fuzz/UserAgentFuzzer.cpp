// The user agent that an operation asks for.

#include <string>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "UserAgent.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = FuzzInput(data, size).TakeRest();
    const std::optional<UserAgent> agent = SplitUserAgent(text);
    TK_CHECK(agent.has_value() == (text.find('/') != std::string::npos));
    if (agent) {
        TK_CHECK(agent->applicationName.find('/') == std::string::npos);
        TK_CHECK(agent->applicationName + "/" + agent->applicationVersion == text);
    }
    return 0;
}
