#pragma once

#include <string>
#include <vector>

/// A message with string arguments, put together in the user's language only when it is rendered.
/// Nothing is thrown: what there is no memory for is logged and left as it was. Thread-unsafe.
class MsgWithArg {
public:
    MsgWithArg() = default;
    explicit MsgWithArg(const std::string& messageId);
    MsgWithArg(const std::string& messageId, const std::string& catalog);
    virtual ~MsgWithArg() = default;

    void setMessageId(const std::string& messageId);

    /// The catalogue to translate from; empty for the current one.
    void setCatalog(const std::string& catalog);

    /// Appends an argument; at most the first ten are rendered. A null one counts as empty.
    void addArg(const std::string& argument);
    void addArg(const char* argument);

    /// True when there is no identifier.
    [[nodiscard]] bool isEmpty() const;

    /// The untranslated text, valid until it is changed.
    [[nodiscard]] const char* getMessageId() const;

    void clearArgs();

    /// Sets the text to the message, translated if asked for, with its arguments in the places of
    /// its printf-style conversions and character references decoded. With arguments every
    /// conversion takes a string, a doubled "%" too; positions ("%2$s") allow another order.
    void format(std::string& text, bool translate) const;

private:
    [[nodiscard]] std::string Render(bool translate) const;

    std::string m_catalog;
    std::string m_messageId;
    std::vector<std::string> m_arguments;
};
