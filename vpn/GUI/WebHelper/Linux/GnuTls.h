#pragma once

#include <gnutls/pkcs11.h>
#include <gnutls/x509.h>

/// The functions of GnuTLS that read tokens and certificates. The program is not linked to the
/// library, which would cost every start time and memory: GLib's TLS module loads it when it is
/// needed, and this does, too. Immutable. Any thread.
class CGnuTls {
public:
    /// The library of the process, or null where there is none, which is logged. The first call
    /// loads it.
    [[nodiscard]] static const CGnuTls* GetInstance();

    decltype(&gnutls_pkcs11_token_get_url) tokenUrl = nullptr;
    decltype(&gnutls_pkcs11_token_get_flags) tokenFlags = nullptr;
    decltype(&gnutls_pkcs11_token_get_info) tokenInfo = nullptr;
    decltype(&gnutls_pkcs11_obj_list_import_url4) listObjects = nullptr;
    decltype(&gnutls_pkcs11_obj_deinit) freeObject = nullptr;
    decltype(&gnutls_pkcs11_obj_get_type) objectType = nullptr;
    decltype(&gnutls_pkcs11_obj_get_info) objectInfo = nullptr;
    decltype(&gnutls_pkcs11_obj_export2) exportObject = nullptr;
    decltype(&gnutls_x509_crt_init) newCertificate = nullptr;
    decltype(&gnutls_x509_crt_deinit) freeCertificate = nullptr;
    decltype(&gnutls_x509_crt_import) readCertificate = nullptr;
    decltype(&gnutls_x509_crt_get_activation_time) validFrom = nullptr;
    decltype(&gnutls_x509_crt_get_expiration_time) validUntil = nullptr;
    decltype(&gnutls_x509_crt_get_ca_status) authorityStatus = nullptr;
    decltype(&gnutls_x509_crt_get_key_usage) keyUsage = nullptr;
    decltype(&gnutls_x509_crt_get_key_purpose_oid) keyPurpose = nullptr;
    decltype(&gnutls_x509_crt_get_dn_by_oid) subjectPart = nullptr;
    decltype(&gnutls_x509_crt_get_issuer_dn_by_oid) issuerPart = nullptr;
    decltype(&gnutls_x509_crt_get_dn) subject = nullptr;
    decltype(&gnutls_x509_crt_get_issuer_dn) issuer = nullptr;
    decltype(&gnutls_x509_crt_check_issuer) isIssuedBy = nullptr;
    /// The library's variable, which holds the function that frees what the library allocated.
    gnutls_free_function* freeMemory = nullptr;

private:
    CGnuTls();

    bool m_isComplete = false;
};
