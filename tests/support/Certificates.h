#pragma once

#include "TlsIdentity.h"

/// The authority that signed all of them except "unknown-issuer". Nobody trusts it by default.
inline std::string TestAuthority() {
    return TK_TEST_CERTIFICATES "/trusted.pem";
}

/// One of the server certificates that make-certificates.sh makes: good, expired, wrong-host,
/// expired-wrong-host, not-yet-valid, unknown-issuer.
inline TlsIdentity TestCertificate(const std::string& name) {
    const std::string base = TK_TEST_CERTIFICATES "/" + name;
    return {base + ".pem", base + ".key"};
}
