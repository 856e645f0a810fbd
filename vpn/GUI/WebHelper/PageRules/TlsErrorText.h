#pragma once

#include <gio/gio.h>

#include <string>

/// Returns one sentence for every flag that is set, in a fixed order, each followed by a blank.
std::string TlsErrorsToText(GTlsCertificateFlags errors);
