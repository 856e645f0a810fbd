#pragma once

#include <string>

/// The program under test: the build's own, or the one that the environment names as TK_HELPER.
[[nodiscard]] const std::string& HelperPath();

// What differs with the engine's API that the program under test is built for.

/// "4.0" or "4.1".
[[nodiscard]] const std::string& EngineApi();

/// Whether the engine cancels some loads whose certificate it refuses, so that the program asks
/// again.
[[nodiscard]] bool EngineCancelsLoads();

/// The engine's words for a connection that was refused.
[[nodiscard]] std::string RefusedText();

/// The result of a page behind a proxy whose password is in its address.
[[nodiscard]] std::string ResultWithPasswordInAddress();

/// The file of the HTTP library.
[[nodiscard]] std::string SoupLibrary();
