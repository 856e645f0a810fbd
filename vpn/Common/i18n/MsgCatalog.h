#pragma once

#include <cstdint>
#include <string>

/// The suite's access to translated user-visible text. It chooses a catalogue, binds it to the
/// suite's folder and translates with it. All state belongs to the process. Any thread: one
/// recursive lock serialises every operation. After a failure, which is logged, the text is
/// untranslated or empty.
class MsgCatalog {
public:
    virtual ~MsgCatalog() = default;

    /// The folder of the catalogues; empty if there is no CStoragePath instance.
    [[nodiscard]] static std::string getLocalizationPath();

    /// Makes a catalogue the process's current text domain, and sets the locale from the
    /// environment. Does nothing if this catalogue was the last one set. Returns false if the
    /// catalogue's charset is not "utf-8"; the catalogue is current all the same. Returns true also
    /// if there is no such catalogue.
    static bool setCatalog(const std::string& catalogName);

    /// Sets the catalogue. getMessage() then no longer chooses the suite's own catalogue. The
    /// locale name is not used.
    static void init(const std::string& catalogName, const char* localeName);
    static void init(const char* localeName, const std::string& catalogName);
    /// For two string literals, in the order of the first form.
    static void init(const char* catalogName, const char* localeName);

    /// Sets the text to the identifier's translation in the current catalogue, or to the identifier
    /// if it has no translation. If init() has not been called, the first call chooses the suite's
    /// own catalogue.
    static void getMessage(const char* identifier, std::string& text);

    /// The same, with the singular for a count of 1 and the plural for any other count.
    static void getMessage(const char* singular, const char* plural, unsigned long count,
                           std::string& text);

    /// The same, from the named catalogue, which stays the current one.
    static void getMessage(const char* identifier, const std::string& catalogName,
                           std::string& text);

    /// The translation as a new string.
    [[nodiscard]] static std::string getMessage(const char* identifier);

    /// Sets the folder, ending in "/", in which the catalogues' folder is searched instead of in
    /// the installation root. An empty path means the installation root again.
    static void setLocalizationPath(const std::string& path);

    /// Sets the locale name that init() writes to the log. It has no other effect.
    static void setLocale(const std::string& localeName);

    /// Values kept for callers. They have no effect here.
    [[nodiscard]] static std::uint64_t getOpaqueNumber();
    static void setOpaqueNumber(std::uint64_t number);
    [[nodiscard]] static std::uint32_t getOpaqueFlag();
    static void setOpaqueFlag(std::uint32_t flag);

    /// Makes the next setCatalog() bind its catalogue even if it is the current one.
    static void resetCatalog();

    /// Unloads the suite's own catalogue. The next translation loads it again.
    static void unloadCatalog();

    /// Formats as printf does; the result is cut at 2047 bytes. Empty for a null format.
    [[nodiscard]] static std::string formatMessage(const char* format, ...)
        __attribute__((format(printf, 1, 2)));

    /// Replaces numeric character references by their characters; see DecodeCharacterReferences().
    static void decodeCharacterReferences(std::string& text);
};
