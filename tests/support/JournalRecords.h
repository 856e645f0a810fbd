#pragma once

#include <string>

// The log's records of how operations begin and end. Nearly every test has some, and only a few are
// about them: those ask for them by name, and all others do not see them.

/// Whether a record of this source file is such a record.
[[nodiscard]] bool IsOfJournal(const std::string& file);

/// The message with "N ms" in place of the time that the operation took.
[[nodiscard]] std::string WithoutTime(const std::string& message);
