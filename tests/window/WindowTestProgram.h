#pragma once

#include <string>

/// The desktop that the toolkit finds when it starts.
struct TestDesktop {
    /// "WIDTHxHEIGHTxDEPTH".
    std::string screen = "1280x800x24";
    /// What stands in the user's settings file of the toolkit; empty makes no file.
    std::string toolkitSettings = {};
    /// The folder that describes the machine's smart-card modules; empty leaves the machine's.
    std::string tokenModules = {};
};

/// Runs the suite's cases in a private world, on a display of its own. Gives the exit status.
[[nodiscard]] int RunWindowTests(int argc, char** argv, const TestDesktop& desktop = {});
