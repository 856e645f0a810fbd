#pragma once

#include <string>
#include <vector>

#include "LaunchedProcess.h"
#include "TemporaryFolder.h"

/// A session bus of this process's own, for as long as it lives.
class SessionBus {
public:
    /// Returns when clients can connect. The bus starts each of the hanging services for the first
    /// client that asks for its name, and the service never claims it; and of the machine's own
    /// services those that are named. Throws std::runtime_error when the bus does not start.
    explicit SessionBus(const std::vector<std::string>& hangingServices = {},
                        const std::vector<std::string>& machinesServices = {});

    /// What DBUS_SESSION_BUS_ADDRESS has to say.
    [[nodiscard]] std::string Address() const;
    /// Whether the bus has started this hanging service.
    [[nodiscard]] bool HasStarted(const std::string& hangingService) const;

private:
    void InstallHangingService(const std::string& name) const;
    [[nodiscard]] std::string MarkOf(const std::string& service) const;

    TemporaryFolder m_folder;
    CLaunchedProcess m_daemon;
};
