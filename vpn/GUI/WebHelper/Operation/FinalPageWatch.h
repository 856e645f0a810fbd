#pragma once

#include <optional>
#include <string>

/// The final page, while the cookie that it should bring is still missing: a script of the page may
/// set the cookie after the page has finished, or shortly before, and the store learns of it late.
/// Decides when to ask the store again. At most one question is under way. Thread-unsafe.
class CFinalPageWatch {
public:
    /// The final page has finished, and the store is being asked for this address.
    void OnArrived(const std::string& uri);

    /// The page is being left, or the operation has its result.
    void OnLeft();

    /// The store has changed, or has answered. Each returns the address to ask for, or nothing if
    /// there is no need.
    [[nodiscard]] std::optional<std::string> OnCookiesChanged();
    [[nodiscard]] std::optional<std::string> OnAnswer();

private:
    [[nodiscard]] std::optional<std::string> takeQuestion();

    std::optional<std::string> m_uri;
    bool m_isAsking = false;
    bool m_hasChanged = false;
};
