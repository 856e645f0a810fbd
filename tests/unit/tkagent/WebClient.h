#pragma once

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/verb.hpp>
#include <cstdint>
#include <string>

/// One request to 127.0.0.1 and its answer; no redirect is followed. Throws when there is none.
boost::beast::http::response<boost::beast::http::string_body> Ask(std::uint16_t port,
                                                                  boost::beast::http::verb method,
                                                                  const std::string& target,
                                                                  const std::string& body = "",
                                                                  const std::string& cookie = "");
