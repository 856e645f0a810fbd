#include "Catalogs.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "TemporaryFolder.h"

namespace {

const char* NameOf(CatalogByteOrder byteOrder) {
    return byteOrder == CatalogByteOrder::Big ? "big" : "little";
}

}  // namespace

std::string CatalogSource(const std::string& charset, const std::string& entries) {
    return "msgid \"\"\n"
           "msgstr \"\"\n"
           "\"Language: xx\\n\"\n"
           "\"Content-Type: text/plain; charset=" +
           charset + "\\n\"\n\n" + entries + "\n";
}

void CompileCatalog(const std::string& path, const std::string& source,
                    CatalogByteOrder byteOrder) {
    const TemporaryFolder folder;
    const std::string errors = folder.Path("errors");
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    const std::string command = std::string(TK_MSGFMT " --endianness=") + NameOf(byteOrder) +
                                " -o '" + path + "' - 2>'" + errors + "'";
    std::FILE* const compiler = popen(command.c_str(), "w");
    if (compiler == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    const bool isWritten = std::fputs(source.c_str(), compiler) >= 0;
    if (pclose(compiler) != 0 || !isWritten) {
        throw std::runtime_error(command + " failed: " + ReadFile(errors));
    }
}

std::string CatalogPath(const std::string& folder, const std::string& locale,
                        const std::string& domain, const std::string& category) {
    return folder + "/" + locale + "/" + category + "/" + domain + ".mo";
}

void UseTestLocales() {
    setenv("LOCPATH", TK_TEST_LOCALES, 1);
}
