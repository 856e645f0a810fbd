#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

/// A request as the server received it.
struct HttpRequest {
    std::string method;
    std::string target;  ///< path and query
    HttpHeaders headers;
    std::string body;
    std::string client = {};  ///< the common name in the certificate that the client has shown

    /// The first header of that name, whatever its letter case, or an empty text.
    [[nodiscard]] std::string Header(const std::string& name) const;
    /// The target without its query.
    [[nodiscard]] std::string Path() const;
};

/// A response, sent with the length of its body; the connection ends after it.
struct HttpResponse {
    unsigned status = 200;
    std::string body;
    std::string contentType = "text/html";
    HttpHeaders headers = {};

    /// The bytes of its head. The Content-Length may be wrong on purpose.
    [[nodiscard]] std::string Head(std::size_t contentLength) const;
};

/// Reads one request from what a client has sent so far, piece by piece.
class HttpRequestReader {
public:
    HttpRequestReader();
    ~HttpRequestReader();
    HttpRequestReader(const HttpRequestReader&) = delete;
    HttpRequestReader& operator=(const HttpRequestReader&) = delete;

    /// False when the bytes are no HTTP request.
    [[nodiscard]] bool Feed(const std::string& bytes);
    [[nodiscard]] bool IsDone() const;
    /// The whole request, once it is done.
    [[nodiscard]] HttpRequest Take() const;

private:
    class Parser;
    std::unique_ptr<Parser> m_parser;
};
