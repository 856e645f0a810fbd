#include "WindowModel.h"

#include <algorithm>

void WindowModel::OperationQueued(const ModelOperation& operation) {
    m_queued.push_back(operation);
    m_resultSent = false;
}

void WindowModel::MainLoopRuns() {
    for (; !m_queued.empty(); m_queued.pop_front()) {
        Carry(m_queued.front());
    }
    if (m_lossSuspected && m_load == Load::started) {
        LoadIsLost();
    }
    m_lossSuspected = false;
}

void WindowModel::Carry(const ModelOperation& operation) {
    if (operation.isReset) {
        m_load = Load::over;
        m_resultSent = false;
        Result("ready");
        m_resultSent = false;
        return;
    }
    m_operation = operation;
    ++m_stretch;
    m_loadMayBeRepeated = true;
    m_baseline.reset();
    m_changed = m_pageOpen = m_pageDue = false;
    if (operation.cookieName.empty()) {
        AskForLoad();
        return;
    }
    m_load = Load::waiting;
    m_queries.emplace_back(Query::baseline, m_stretch);
}

bool WindowModel::IsLoadToCome() const {
    return m_load == Load::waiting || m_load == Load::asked;
}

void WindowModel::AskForLoad() {
    m_load = Load::asked;
    ++m_loads;
}

void WindowModel::LoadIsLost() {
    if (!m_loadMayBeRepeated) {
        Result("error_unknown");
        return;
    }
    m_loadMayBeRepeated = false;
    AskForLoad();
}

void WindowModel::Result(const std::string& text) {
    if (!m_resultSent) {
        m_results.push_back(text);
        ++m_stretch;
        m_baseline.reset();
        m_changed = m_pageOpen = m_pageDue = false;
        m_loadMayBeRepeated = false;
        m_load = m_load == Load::started ? Load::over : m_load;
    }
    m_resultSent = true;
}

void WindowModel::LoadStarted() {
    if (m_load != Load::waiting) {
        m_load = m_load == Load::asked ? Load::started : Load::over;
    }
}

void WindowModel::PageCommitted(unsigned status) {
    if (IsLoadToCome()) {
        return;
    }
    m_load = Load::over;
    if (status >= 400 && status <= 599) {
        Result("error_navi");
    }
}

void WindowModel::PageFinished(const std::string& uri) {
    if (IsLoadToCome()) {
        return;
    }
    m_load = Load::over;
    if (uri.empty() || uri != m_operation.finalUrl || m_resultSent) {
        return;
    }
    if (m_operation.cookieName.empty()) {
        Result("success");
    } else {
        m_queries.emplace_back(Query::finalPage, m_stretch);
    }
}

void WindowModel::LoadFailed(int code) {
    if (code == 302 || IsLoadToCome()) {
        return;
    }
    m_load = Load::over;
    if (code != 101) {
        Result("error_unknown");
    }
}

void WindowModel::TlsFailed() {
    if (!IsLoadToCome()) {
        m_load = Load::over;
        Result("error_cert");
    }
}

void WindowModel::LoadingChanged(bool loading) {
    m_lossSuspected = !loading && m_load == Load::started;
}

void WindowModel::ProcessTerminated() {
    if (m_load == Load::waiting) {
        return;
    }
    if (m_load == Load::asked) {
        LoadIsLost();
        return;
    }
    m_load = Load::over;
    Result("error_unknown");
}

bool WindowModel::ResourceStarted() {
    if (m_operation.cookieName.empty()) {
        return false;
    }
    m_pageOpen = false;
    return true;
}

void WindowModel::PageAnswered(bool isHtml, unsigned status) {
    if (IsLoadToCome() || !isHtml || status < 200 || status > 299) {
        return;
    }
    m_pageOpen = true;
    m_pageDue = m_changed;
    AskForPage();
}

void WindowModel::CookiesChanged() {
    m_changed = true;
    m_pageDue = m_pageDue || m_pageOpen;
    AskForPage();
}

void WindowModel::AskForPage() {
    if (m_pageDue && !m_pageQueryOpen && m_baseline) {
        m_pageDue = false;
        m_pageQueryOpen = true;
        m_queries.emplace_back(Query::page, m_stretch);
    }
}

void WindowModel::QueryAnswered(const std::optional<Cookies>& cookies) {
    const auto [query, stretch] = m_queries.front();
    m_queries.pop_front();
    const bool counts = cookies && stretch == m_stretch;
    m_pageQueryOpen = m_pageQueryOpen && query != Query::page;
    if (query == Query::baseline && stretch == m_stretch) {
        m_baseline = cookies;
        AskForLoad();
    } else if (counts) {
        const std::string result =
            query == Query::page ? NewResultIn(*cookies) : FirstResultIn(*cookies);
        if (!result.empty()) {
            Result(result);
        }
    }
    if (query == Query::page) {
        AskForPage();
    }
}

std::string WindowModel::FirstResultIn(const Cookies& cookies) const {
    for (const auto& [name, value] : cookies) {
        if (name == m_operation.cookieName && !value.empty()) {
            return "success_with_cookie " + value;
        }
        if (name == m_operation.errorCookieName && !value.empty()) {
            return "error_cookie " + value;
        }
    }
    return cookies.empty() ? "" : "error_cookie";
}

std::string WindowModel::NewResultIn(const Cookies& cookies) const {
    const auto find = [&](const std::string& wanted) -> std::string {
        for (const auto& cookie : cookies) {
            const bool isOld =
                std::find(m_baseline->begin(), m_baseline->end(), cookie) != m_baseline->end();
            if (cookie.first == wanted && !cookie.second.empty() && !isOld) {
                return cookie.second;
            }
        }
        return "";
    };
    if (const std::string value = find(m_operation.cookieName); !value.empty()) {
        return "success_with_cookie " + value;
    }
    const std::string value = find(m_operation.errorCookieName);
    return value.empty() ? "" : "error_cookie " + value;
}
