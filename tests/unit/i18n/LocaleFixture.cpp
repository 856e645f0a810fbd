#include "LocaleFixture.h"

#include <clocale>
#include <cstdlib>

LocaleFixture::LocaleFixture() {
    UseTestLocales();
    UseEnvironmentLocale("C");
    UseLocale("C");
}

LocaleFixture::~LocaleFixture() {
    std::setlocale(LC_ALL, "C");
}

void LocaleFixture::UseLocale(const std::string& name) {
    ASSERT_NE(std::setlocale(LC_ALL, name.c_str()), nullptr) << name;
}

void LocaleFixture::UseEnvironmentLocale(const std::string& name) {
    ASSERT_EQ(setenv("LC_ALL", name.c_str(), 1), 0);
}

void LocaleFixture::Install(const std::string& locale, const std::string& domain,
                            const std::string& original, const std::string& translation,
                            const std::string& category) const {
    CompileCatalog(
        CatalogPath(m_folder.Path(), locale, domain, category),
        CatalogSource("utf-8", "msgid \"" + original + "\"\nmsgstr \"" + translation + "\"\n"));
}
