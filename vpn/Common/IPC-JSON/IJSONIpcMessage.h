#pragma once

#include <string>

/// A record that travels as the JSON payload of one framed message. Nothing is thrown; a failure
/// is logged where it is found. One record is used by one thread at a time.
class IJSONIpcMessage {
public:
    /// Replaces the text by the record's JSON document; on failure the text is empty.
    [[nodiscard]] virtual bool Serialize(std::string& json) const = 0;

    /// Fills the record from a JSON document.
    [[nodiscard]] virtual bool Deserialize(const std::string& json) = 0;

    virtual ~IJSONIpcMessage() = default;
};
