#include "FinalPageWatch.h"

void CFinalPageWatch::OnArrived(const std::string& uri) {
    m_uri = uri;
    m_isAsking = true;
    m_hasChanged = false;
}

void CFinalPageWatch::OnLeft() {
    m_uri.reset();
}

std::optional<std::string> CFinalPageWatch::OnCookiesChanged() {
    m_hasChanged = true;
    return takeQuestion();
}

std::optional<std::string> CFinalPageWatch::OnAnswer() {
    m_isAsking = false;
    return takeQuestion();
}

std::optional<std::string> CFinalPageWatch::takeQuestion() {
    if (!m_uri || m_isAsking || !m_hasChanged) {
        return std::nullopt;
    }
    m_isAsking = true;
    m_hasChanged = false;
    return m_uri;
}
