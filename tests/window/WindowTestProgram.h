#pragma once

/// Runs the suite's cases in a private world, on a display of its own. Gives the exit status.
[[nodiscard]] int RunWindowTests(int argc, char** argv);
