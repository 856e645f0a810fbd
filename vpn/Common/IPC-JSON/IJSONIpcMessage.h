#pragma once

#include <string>

/// A record that is sent as the JSON payload of one frame. It throws nothing and logs its failures.
/// One record is used by one thread at a time.
class IJSONIpcMessage {
public:
    /// Sets json to the record's JSON document. Returns false on failure; json is then empty.
    [[nodiscard]] virtual bool Serialize(std::string& json) const = 0;

    /// Fills the record from a JSON document. Returns false on failure.
    [[nodiscard]] virtual bool Deserialize(const std::string& json) = 0;

    virtual ~IJSONIpcMessage() = default;
};
