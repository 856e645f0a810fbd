#pragma once

#include <ctime>
#include <string>
#include <vector>

/// A certificate on a smart card or another token, which keeps the certificate's key.
struct TokenCertificate {
    // Names for people, in UTF-8.
    std::string subject;
    std::string issuer;
    std::string token;
    std::time_t validFrom = 0;
    std::time_t validUntil = 0;
    /// The certificate and behind it those of its issuers that the token has, in DER.
    std::vector<std::string> chain;
    /// The address of the key, of the form "pkcs11:...".
    std::string keyAddress;
};
