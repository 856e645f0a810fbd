#pragma once

#include <string>
#include <vector>

/// A message with string arguments. It is composed in the user's language only when it is
/// formatted. Throws nothing: if there is no memory for a change, that is logged and the message
/// stays as it was. Thread-unsafe.
class MsgWithArg {
public:
    MsgWithArg() = default;
    explicit MsgWithArg(const std::string& messageId);
    MsgWithArg(const std::string& messageId, const std::string& catalog);
    virtual ~MsgWithArg() = default;

    void setMessageId(const std::string& messageId);

    /// Sets the catalogue to translate from. Empty means the current one.
    void setCatalog(const std::string& catalog);

    /// Appends an argument. Only the first ten are used. A null argument counts as empty.
    void addArg(const std::string& argument);
    void addArg(const char* argument);

    /// Whether there is no identifier.
    [[nodiscard]] bool isEmpty() const;

    /// The untranslated text, valid until the identifier is changed.
    [[nodiscard]] const char* getMessageId() const;

    void clearArgs();

    /// Sets the text to the message, translated if asked for. The arguments replace the
    /// printf-style conversions, and character references are decoded. If there are arguments,
    /// every conversion takes a string, a doubled "%" too; positions ("%2$s") allow another order.
    /// Without memory the text is empty.
    void format(std::string& text, bool translate) const;

private:
    [[nodiscard]] std::string Render(bool translate) const;

    std::string m_catalog;
    std::string m_messageId;
    std::vector<std::string> m_arguments;
};
