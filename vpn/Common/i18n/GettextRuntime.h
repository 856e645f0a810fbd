#pragma once

#include <string>

// The program's own message translation. It defines these functions of <libintl.h>: textdomain,
// bindtextdomain, bind_textdomain_codeset, gettext, dgettext, dcgettext, ngettext, dngettext and
// dcngettext. The libraries that the program loads use them too, because they find these names in
// the executable. The functions below are for the message catalogue.
//
// Any thread, also before static initialisation: one private lock guards every call. A text that a
// lookup returned stays valid until its domain's catalogue is released or the domain is bound
// again. Only the message catalogue does either. It does so only with its own domains, and copies
// their texts under its own lock. The texts of a library's domain are therefore valid until the
// process ends. textdomain() returns one buffer, whose contents change with the current domain.

/// Returns the charset that the current domain's loaded catalogue declares, unchanged. Empty if no
/// catalogue is loaded or if it declares none.
std::string current_textdomain_charset();

/// Unloads a domain's catalogue. The next lookup loads it again.
void release_textdomain_catalog(const char* domain);

/// Sets the process's locale from the environment. It holds the lock, so that no lookup on another
/// thread reads the locale's name while that name is being replaced.
void set_locale_from_environment();
