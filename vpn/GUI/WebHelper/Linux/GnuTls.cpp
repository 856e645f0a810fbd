#include "GnuTls.h"

#include <dlfcn.h>

#include "AppLog.h"

namespace {

// The version that GLib's TLS module is linked to, so that there is only one in the process.
constexpr char kLibrary[] = "libgnutls.so.30";

template <class Pointer>
bool Find(void* library, const char* name, Pointer& pointer) {
    pointer = reinterpret_cast<Pointer>(dlsym(library, name));
    if (pointer == nullptr) {
        TK_LOG_WARNING_OF("CGnuTls", "Symbol %s not found.", name);
    }
    return pointer != nullptr;
}

}  // namespace

const CGnuTls* CGnuTls::GetInstance() {
    static const CGnuTls library;
    return library.m_isComplete ? &library : nullptr;
}

CGnuTls::CGnuTls() {
    // Never closed: what the library keeps of the tokens lives as long as the process.
    void* const library = dlopen(kLibrary, RTLD_NOW);
    if (library == nullptr) {
        TK_LOG_WARNING("dlopen failed: %s", dlerror());
        return;
    }
    m_isComplete = Find(library, "gnutls_pkcs11_token_get_url", tokenUrl) &&
                   Find(library, "gnutls_pkcs11_token_get_flags", tokenFlags) &&
                   Find(library, "gnutls_pkcs11_token_get_info", tokenInfo) &&
                   Find(library, "gnutls_pkcs11_obj_list_import_url4", listObjects) &&
                   Find(library, "gnutls_pkcs11_obj_deinit", freeObject) &&
                   Find(library, "gnutls_pkcs11_obj_get_type", objectType) &&
                   Find(library, "gnutls_pkcs11_obj_get_info", objectInfo) &&
                   Find(library, "gnutls_pkcs11_obj_export2", exportObject) &&
                   Find(library, "gnutls_x509_crt_init", newCertificate) &&
                   Find(library, "gnutls_x509_crt_deinit", freeCertificate) &&
                   Find(library, "gnutls_x509_crt_import", readCertificate) &&
                   Find(library, "gnutls_x509_crt_get_activation_time", validFrom) &&
                   Find(library, "gnutls_x509_crt_get_expiration_time", validUntil) &&
                   Find(library, "gnutls_x509_crt_get_ca_status", authorityStatus) &&
                   Find(library, "gnutls_x509_crt_get_key_usage", keyUsage) &&
                   Find(library, "gnutls_x509_crt_get_key_purpose_oid", keyPurpose) &&
                   Find(library, "gnutls_x509_crt_get_dn_by_oid", subjectPart) &&
                   Find(library, "gnutls_x509_crt_get_issuer_dn_by_oid", issuerPart) &&
                   Find(library, "gnutls_x509_crt_get_dn", subject) &&
                   Find(library, "gnutls_x509_crt_get_issuer_dn", issuer) &&
                   Find(library, "gnutls_x509_crt_check_issuer", isIssuedBy) &&
                   Find(library, "gnutls_free", freeMemory);
}
