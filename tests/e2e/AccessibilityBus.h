#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>

#include "ProgramRun.h"
#include "SessionBus.h"

/// A desktop's session bus for a screen reader, as long as the object lives. For one thread.
class AccessibilityBus {
public:
    /// What lets the program know of it.
    [[nodiscard]] std::map<std::string, std::optional<std::string>> ForProgram() const {
        return {{"DBUS_SESSION_BUS_ADDRESS", m_bus.Address()}, {"NO_AT_BRIDGE", std::nullopt}};
    }

    /// The objects on the accessibility bus, one a line. If they cannot be read, the test fails.
    [[nodiscard]] std::string PrintTree() const {
        LaunchCommand command;
        command.arguments = {"/usr/bin/python3", TK_ACCESSIBLE_TREE};
        command.environment = {{"DBUS_SESSION_BUS_ADDRESS", m_bus.Address()}};
        const ProgramRun run = RunProgram(command);
        EXPECT_EQ(run.end, "exited with status 0") << run.errors;
        return run.output;
    }

private:
    SessionBus m_bus{{}, {"org.a11y.Bus"}};
};
