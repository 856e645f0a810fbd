#pragma once

#include <string>

#include "AppLog.h"
#include "IBrowserIpcClientCB.h"

/// Leaves a record of level 'T' in the log for each callback, among the program's own.
class RecordingCallback : public IBrowserIpcClientCB {
public:
    void OnReceivedBrowserOperation(const IBrowserOperation& operation) override {
        record("OnReceivedBrowserOperation " +
               std::to_string(static_cast<int>(operation.GetOperationType())) + " " +
               operation.GetUrl());
    }
    void OnReceivedInvalidBrowserOperation() override {
        record("OnReceivedInvalidBrowserOperation");
    }
    void OnBrowserResultSent() override { record("OnBrowserResultSent"); }
    void OnBrowserResultSendError() override { record("OnBrowserResultSendError"); }
    void OnIpcConnectError() override { record("OnIpcConnectError"); }
    void OnIpcReceiveError() override { record("OnIpcReceiveError"); }

private:
    static void record(const std::string& callback) {
        LogMessage(__func__, __FILE__, __LINE__, 'T', "%s", callback.c_str());
    }
};
