#pragma once

#include <string>

/// What a TLS server presents: PEM files of its certificate chain and of its private key, and
/// whether it knows no version after TLS 1.1. Two empty names mean no TLS.
struct TlsIdentity {
    std::string certificate;
    std::string key;
    bool isOutdated = false;
};
