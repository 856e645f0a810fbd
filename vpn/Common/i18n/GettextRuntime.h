#pragma once

#include <string>

// The program's own message translation. It serves the functions that <libintl.h> declares, to
// the program and to the libraries that it loads (they find these names in the executable):
// textdomain, bindtextdomain, bind_textdomain_codeset, gettext, dgettext, dcgettext, ngettext,
// dngettext and dcngettext, and for the message catalogue those below.
//
// Any thread, before static initialisation too: one private lock guards every call. A text that a
// lookup gave stays valid until its domain's catalogue is released or the domain bound again. Only
// the message catalogue does either, with its own domains, whose texts it copies under its own
// lock; the texts of a library's domain therefore last for the process's life. The name that
// textdomain() gives stands in one buffer, which changes with the current domain.

/// The charset that the current domain's loaded catalogue declares, as it stands there; else empty.
std::string current_textdomain_charset();

/// Unloads a domain's catalogue; the next lookup loads it afresh.
void release_textdomain_catalog(const char* domain);

/// Takes the process's locale from the environment. Apart from lookups, so that none reads the
/// locale's name on another thread while that is being replaced.
void set_locale_from_environment();
