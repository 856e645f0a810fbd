#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

    /// What the operation has asked for since the last look.
    [[nodiscard]] Lines Asked() { return m_port.TakeLines(); }

    void Browse() {
        m_port.QueueOperation();
        m_operation.Begin(kPage, kFinal, {});
    }

    /// Begins, with an empty store, up to the load.
    void BrowseForCookie(const RecordingPort::Cookies& baseline = {}) {
        m_port.QueueOperation();
        m_operation.Begin(kPage, kFinal, {"sid", "err"});
        m_port.Answer(baseline);
    }

    /// The same with the load under way, and what was asked for so far forgotten.
    void StartBrowse() {
        Browse();
        Start();
    }
    void StartBrowseForCookie(const RecordingPort::Cookies& baseline = {}) {
        BrowseForCookie(baseline);
        Start();
    }

    bool Fail(int code, bool isCancelledByEngine = false) {
        return m_operation.OnLoadFailed({code, isCancelledByEngine, "a failure", kPage});
    }

    static PageResponse Page(const std::string& uri = kPage) {
        return {200, "text/html", uri, std::nullopt};
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
