#pragma once

#include <gio/gio.h>

#include "GObjectPtr.h"
#include "TokenCertificate.h"

/// The certificate as the engine takes it. Its key stays on the token: only the key's address is
/// given, and the engine's network process opens it. Null if GLib's TLS module refuses it, which is
/// logged. Does not look at the token.
[[nodiscard]] GObjectPtr<GTlsCertificate> NewTlsCertificate(const TokenCertificate& certificate);
