// Stands in for the helper where the agent's answer to a fault is tested. FAKE_HELPER names what
// it does; without it, it carries out every operation at once and returns it in cookie_value.

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

#include "HelperConnection.h"
#include "WebClient.h"

namespace {

namespace http = boost::beast::http;

constexpr std::chrono::minutes kPatience{2};

CHelperConnection ConnectTo(const char* port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    CUniqueFd descriptor(socket(AF_INET, SOCK_STREAM, 0));
    if (connect(descriptor.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        std::exit(90);
    }
    return CHelperConnection(std::move(descriptor));
}

bool SendResult(CHelperConnection& connection, BrowserResultType type, const std::string& value) {
    std::string text;
    return CBrowserResult(type, value).Serialize(text) && connection.SendPayload(text);
}

std::uint16_t PortOf(const std::string& url) {
    return static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
}

// What a browser on the site's form would do: report, mistype, and sign in.
std::string CookieOfSignIn(const std::string& url) {
    const std::uint16_t port = PortOf(url);
    Ask(port, http::verb::post, "/painted");
    Ask(port, http::verb::post, "/signin", "user=demo&password=mistyped");
    const auto answer = Ask(port, http::verb::post, "/signin", "user=demo&password=tunnelkeep");
    const std::string header(answer[http::field::set_cookie]);
    const std::size_t start = header.find('=') + 1;
    return header.substr(start, header.find(';') - start);
}

bool CarryOut(CHelperConnection& connection, const CBrowserOperation& operation,
              const std::string& mode) {
    if (mode == "signs_in") {
        return SendResult(connection, BrowserResultType::success_with_cookie,
                          CookieOfSignIn(operation.GetUrl()));
    }
    std::string text;
    if (!operation.Serialize(text)) {
        return false;
    }
    text.pop_back();
    const bool reset = operation.GetOperationType() == BrowserOperationType::reset;
    return SendResult(connection, reset ? BrowserResultType::ready : BrowserResultType::success,
                      text);
}

void Misbehave(CHelperConnection& connection, const std::string& mode) {
    if (mode == "dies") {
        raise(SIGKILL);
    } else if (mode == "exits") {
        std::exit(5);
    } else if (mode == "closes") {
        connection.Close();
        pause();
    } else if (mode == "silent") {
        pause();
    } else if (mode == "wrong_frame") {
        static_cast<void>(connection.SendBytes(std::string("\7\0\0\0\0\0\0\0\0", 9)));
    } else if (mode == "wrong_result") {
        static_cast<void>(connection.SendPayload("{\"result\":\"splendid\"}"));
    }
}

int Serve(CHelperConnection& connection, const std::string& mode) {
    std::string payload;
    CBrowserOperation operation;
    while (connection.ReceivePayload(payload, DeadlineIn(kPatience)) == ReceiveOutcome::Received &&
           operation.Deserialize(payload)) {
        if (operation.GetOperationType() == BrowserOperationType::terminate) {
            return mode == "ends_badly" ? 7 : 0;
        }
        Misbehave(connection, mode);
        if (!CarryOut(connection, operation, mode)) {
            return 91;
        }
    }
    return 92;
}

}  // namespace

int main(int argc, char** argv) {
    const char* const value = std::getenv("FAKE_HELPER");
    const std::string mode = value != nullptr ? value : "";
    if (argc != 2) {
        return 93;
    }
    if (mode == "never_connects") {
        pause();
    }
    if (mode == "fails_at_start") {
        return 3;
    }
    std::cout << "the fake helper's own output" << std::endl;
    CHelperConnection connection = ConnectTo(argv[1]);
    const bool ready = mode == "not_ready" ? SendResult(connection, BrowserResultType::cancel, "")
                                           : SendResult(connection, BrowserResultType::ready, "");
    return ready ? Serve(connection, mode) : 94;
}
