#pragma once

#include <string>

/// What a TLS server presents: PEM files of its certificate chain and of its private key, and the
/// last version that it knows. Two empty names mean no TLS.
struct TlsIdentity {
    enum class Version { latest, tls1_2, tls1_1 };

    std::string certificate;
    std::string key;
    Version version = Version::latest;
    /// A PEM file of the authorities whose certificates clients are asked for, on each connection
    /// anew. Empty asks for none.
    std::string clientAuthorities = {};
    /// Whether a client without one is refused.
    bool needsClient = false;
};
