#pragma once

#include <gio/gio.h>

#include <string>

/// One sentence, each with a blank behind it, for every flag that is set, in a fixed order.
std::string TlsErrorsToText(GTlsCertificateFlags errors);
