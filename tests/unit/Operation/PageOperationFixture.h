#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "RecordingPort.h"

/// An operation without an engine. Its page is kPage, its final page kFinal, on the same host.
class PageOperationFixture : public testing::Test {
protected:
    static constexpr char kPage[] = "http://host/page";
    static constexpr char kFinal[] = "http://host/final";

    PageOperationFixture() { m_port.Serve(m_operation); }

    using Lines = std::vector<std::string>;
    using Cookies = std::vector<StoredCookie>;

    /// What the operation has asked for since the last look.
    [[nodiscard]] Lines Asked() { return m_port.TakeLines(); }

    void Browse() {
        m_port.QueueOperation();
        m_operation.Begin(kPage, kFinal, {});
    }

    /// Begins, with this store, up to the load.
    void BrowseForCookie(const std::string& finalUrl = kFinal,
                         const std::optional<Cookies>& baseline = Cookies{}) {
        m_port.QueueOperation();
        m_operation.Begin(kPage, finalUrl, {"sid", "err"});
        m_port.Answer(baseline);
    }

    /// The same with the load under way, and what was asked for so far forgotten.
    void StartBrowse() {
        Browse();
        Start();
    }
    void StartBrowseForCookie(const std::string& finalUrl = kFinal) {
        BrowseForCookie(finalUrl);
        Start();
    }

    /// The engine is about to request the address, while the store holds these cookies.
    void Navigate(const std::string& uri, const std::optional<Cookies>& cookies = Cookies{}) {
        const std::optional<CookieQuery> query = m_operation.OnNavigation(uri);
        if (query) {
            m_operation.OnCookies(*query, cookies);
        }
    }

    /// A page comes without a header, requested by these addresses. The store holds these cookies
    /// before each of them.
    void Visit(const std::vector<std::string>& requests = {kPage}, const Cookies& before = {}) {
        for (const std::string& uri : requests) {
            Navigate(uri, before);
        }
        m_operation.OnResponse({200, "text/html", requests, std::nullopt});
    }

    bool Fail(int code, bool isCancelledByEngine = false) {
        return m_operation.OnLoadFailed({code, isCancelledByEngine, "a failure", kPage});
    }

    static PageResponse PageWithHeader(const std::string& setCookie,
                                       const std::vector<std::string>& requests = {kPage}) {
        return {200, "text/html", requests, setCookie};
    }

    static StoredCookie Cookie(const std::string& name, const std::string& value) {
        return {name, value, "host", "/"};
    }

    LogCapture m_log;
    RecordingPort m_port;
    CPageOperation m_operation{m_port};

private:
    void Start() {
        m_operation.OnLoadStarted();
        static_cast<void>(Asked());
    }
};
