#pragma once

#include <cstdint>
#include <string>

/// The suite's door to translated user-visible text: chooses a catalogue, binds it to the suite's
/// folder and translates with it. All state is the process's. Any thread: one recursive lock
/// serialises every operation. Failures are logged and answered with untranslated or empty text.
class MsgCatalog {
public:
    virtual ~MsgCatalog() = default;

    /// The folder of the catalogues, or empty when there is no CStoragePath instance.
    [[nodiscard]] static std::string getLocalizationPath();

    /// Makes a catalogue the process's current text domain, with the locale of the environment;
    /// nothing is done when it was the last one set. False when its charset is not "utf-8", and
    /// it is current all the same; true also when there is no such catalogue.
    static bool setCatalog(const std::string& catalogName);

    /// Sets the catalogue and marks the process's first one as set. The locale name is not used.
    static void init(const std::string& catalogName, const char* localeName);
    static void init(const char* localeName, const std::string& catalogName);
    /// Takes two literals in the first order.
    static void init(const char* catalogName, const char* localeName);

    /// Sets the text to the identifier's translation in the current catalogue, or to the
    /// identifier when it has none. The first call chooses the suite's own catalogue.
    static void getMessage(const char* identifier, std::string& text);

    /// The same with the singular for a count of 1 and the plural for any other.
    static void getMessage(const char* singular, const char* plural, unsigned long count,
                           std::string& text);

    /// The same from the named catalogue, which stays the current one.
    static void getMessage(const char* identifier, const std::string& catalogName,
                           std::string& text);

    /// The translation as a new string.
    [[nodiscard]] static std::string getMessage(const char* identifier);

    /// A folder, ending in "/", that takes the installation root's place above the catalogues';
    /// an empty path gives the root its place back.
    static void setLocalizationPath(const std::string& path);

    /// The name that initialisation reports in the log.
    static void setLocale(const std::string& localeName);

    /// Values kept for callers; they mean nothing here.
    [[nodiscard]] static std::uint64_t getOpaqueNumber();
    static void setOpaqueNumber(std::uint64_t number);
    [[nodiscard]] static std::uint32_t getOpaqueFlag();
    static void setOpaqueFlag(std::uint32_t flag);

    /// Makes the next setCatalog() bind its catalogue even if it is the current one.
    static void resetCatalog();

    /// Unloads the suite's own catalogue; the next translation loads it afresh.
    static void unloadCatalog();

    /// printf-style text of at most 2047 bytes, cut there; empty for a null format.
    [[nodiscard]] static std::string formatMessage(const char* format, ...)
        __attribute__((format(printf, 1, 2)));

    /// Replaces numeric character references by their characters; see DecodeCharacterReferences().
    static void decodeCharacterReferences(std::string& text);
};
