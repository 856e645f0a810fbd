#pragma once

/// What the engine does differently under its two APIs, as it shows outside.
#if TK_NEWER_ENGINE
/// The newer one cancels some loads whose certificate it refuses, and the program asks again.
constexpr bool kEngineCancelsLoads = true;
constexpr char kRefusedText[] = "Could not connect to 127.0.0.1: Connection refused";
/// What comes of a page behind a proxy whose password stands in its address.
constexpr char kResultWithPasswordInAddress[] = "error_navi";
#else
constexpr bool kEngineCancelsLoads = false;
constexpr char kRefusedText[] = "Could not connect: Connection refused";
constexpr char kResultWithPasswordInAddress[] = "success";
#endif
