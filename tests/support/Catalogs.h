#pragma once

#include <string>

/// Byte order of a compiled catalogue.
enum class CatalogByteOrder { Little, Big };

/// Text of a catalogue's source: a header that declares the charset, then the given entries, such
/// as R"(msgid "one" msgstr "eins")".
[[nodiscard]] std::string CatalogSource(const std::string& charset, const std::string& entries);

/// Compiles a catalogue's source with msgfmt into the file; throws when that fails.
void CompileCatalog(const std::string& path, const std::string& source,
                    CatalogByteOrder byteOrder = CatalogByteOrder::Little);

/// The path of a locale's catalogue below a folder.
[[nodiscard]] std::string CatalogPath(const std::string& folder, const std::string& locale,
                                      const std::string& domain,
                                      const std::string& category = "LC_MESSAGES");

/// Makes the locales below known to setlocale() in this process and its children: de, de_DE,
/// de_DE.UTF-8, de@euro, de_DE@euro, de_DE.UTF-8@euro, sr_RS@latin, C@euro, POSIX@euro, pt_BR, and
/// with "UTF-8" the usual one of each catalogue that comes with the program. A bare machine has
/// none of them.
void UseTestLocales();
