#include "HelperProgram.h"

#include <cstdlib>

#include "TemporaryFolder.h"

namespace {

bool HasNewerApi() {
    return EngineApi() == "4.1";
}

}  // namespace

const std::string& HelperPath() {
    static const char* const given = std::getenv("TK_HELPER");
    static const std::string path = given != nullptr ? given : TKWEBHELPER_PATH;
    return path;
}

const std::string& EngineApi() {
    // The program's file names the library that it is linked with.
    static const bool isNewer =
        ReadFile(HelperPath()).find("libwebkit2gtk-4.1.so") != std::string::npos;
    static const std::string api = isNewer ? "4.1" : "4.0";
    return api;
}

bool EngineCancelsLoads() {
    return HasNewerApi();
}

std::string RefusedText() {
    return HasNewerApi() ? "Could not connect to 127.0.0.1: Connection refused"
                         : "Could not connect: Connection refused";
}

std::string ResultWithPasswordInAddress() {
    return HasNewerApi() ? "error_navi" : "success";
}

std::string SoupLibrary() {
    return HasNewerApi() ? "libsoup-3.0.so.0" : "libsoup-2.4.so.1";
}
