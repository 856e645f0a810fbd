#pragma once

#include <unistd.h>

#include <map>
#include <optional>
#include <string>

#include "LaunchedProcess.h"
#include "TemporaryFolder.h"
#include "UniqueFd.h"

/// A listener of another user in the agent's place. An ordinary user cannot have one: there the
/// listener is its own, and a table of sockets that is given to the program says otherwise.
class StrangeListener {
public:
    /// The way is one that stranger.py knows. Throws if the listener cannot be had.
    explicit StrangeListener(const std::string& way);

    [[nodiscard]] const std::string& Port() const { return m_port; }
    /// The user to whom it belongs.
    [[nodiscard]] const std::string& User() const { return m_user; }
    /// What the program needs in its environment.
    [[nodiscard]] std::map<std::string, std::optional<std::string>> Environment() const;

    /// How many bytes came until the connection's end.
    [[nodiscard]] std::string CountReceived();

private:
    void nameStranger();

    CUniqueFd m_input;
    CUniqueFd m_output;
    CLaunchedProcess m_process;
    TemporaryFolder m_folder;
    std::string m_port;
    std::string m_user;
    std::string m_table;
};
