#pragma once

#include <string>

/// What a TLS server presents: PEM files of its certificate chain and of its private key. Two empty
/// names mean no TLS.
struct TlsIdentity {
    std::string certificate;
    std::string key;
};
