#pragma once

#include <cstdint>
#include <string>

// Some versions of it forget <cstdint>, so they come behind that.
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/verb.hpp>

/// One request to 127.0.0.1 and its answer; no redirect is followed. Throws when there is none.
boost::beast::http::response<boost::beast::http::string_body> Ask(std::uint16_t port,
                                                                  boost::beast::http::verb method,
                                                                  const std::string& target,
                                                                  const std::string& body = "",
                                                                  const std::string& cookie = "");
