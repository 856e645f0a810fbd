#pragma once

#include <cstddef>
#include <string>

/// An operation of exactly this many bytes, as agents write it; at least 200.
inline std::string OperationText(std::size_t size) {
    const std::string begin =
        R"({"operation":"browse_for_cookie","show":true,"final_url":"https://vpn.example/welcome",)"
        R"("cookie_name":"session","error_cookie_name":"denied","url":"https://vpn.example/login?)";
    const std::string end = "\"}";
    return begin + std::string(size - begin.size() - end.size(), 's') + end;
}

/// The usual answer to it.
constexpr char kResultText[] = R"({"result":"success_with_cookie","cookie_value":"7d1f0c"})"
                               "\n";
