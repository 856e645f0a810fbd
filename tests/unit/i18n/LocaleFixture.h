#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Catalogs.h"
#include "TemporaryFolder.h"

/// A test with a folder for catalogues and a process locale of its own, "C" before and after.
class LocaleFixture : public testing::Test {
protected:
    LocaleFixture();
    ~LocaleFixture() override;

    /// Makes a locale the process's; the test fails when there is none of that name.
    static void UseLocale(const std::string& name);

    /// Makes a locale the one that the environment asks for.
    static void UseEnvironmentLocale(const std::string& name);

    /// Puts a catalogue for the locale into the folder, with a single entry.
    void Install(const std::string& locale, const std::string& domain, const std::string& original,
                 const std::string& translation, const std::string& category = "LC_MESSAGES") const;

    TemporaryFolder m_folder;
};
