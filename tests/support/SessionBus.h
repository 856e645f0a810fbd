#pragma once

#include <string>
#include <vector>

#include "LaunchedProcess.h"
#include "TemporaryFolder.h"

/// A session bus of this process's own, as long as the object lives.
class SessionBus {
public:
    /// Returns when clients can connect. The bus starts each hanging service for the first client
    /// that asks for its name; the service never claims the name. Of the machine's own services the
    /// bus starts those that are named. Throws std::runtime_error if the bus does not start.
    explicit SessionBus(const std::vector<std::string>& hangingServices = {},
                        const std::vector<std::string>& machinesServices = {});

    /// The value for DBUS_SESSION_BUS_ADDRESS.
    [[nodiscard]] std::string Address() const;
    /// Whether the bus has started this hanging service.
    [[nodiscard]] bool HasStarted(const std::string& hangingService) const;

private:
    void InstallHangingService(const std::string& name) const;
    [[nodiscard]] std::string MarkOf(const std::string& service) const;

    TemporaryFolder m_folder;
    CLaunchedProcess m_daemon;
};
