#pragma once

#include <string>
#include <vector>

// Text files are handled line by line. Reading removes the carriage returns and line feeds at the
// end of each line. Functions that rewrite a file end every line with a bare line feed, and so
// deliberately convert files with other line endings. Every function logs its failure and then
// returns false.

/// Reads the lines of a file.
[[nodiscard]] bool ReadTextFile(const std::string& path, std::vector<std::string>& lines);

/// Whether every line is white space only; true for an empty file.
[[nodiscard]] bool FileHasOnlyWhiteSpace(const std::string& path);

/// Replaces everything in the file by the contents, up to their first zero byte. Creates a missing
/// file.
[[nodiscard]] bool SetTextFileContents(const std::string& path, const std::string& contents);

/// Appends the line and a line feed to the file. Creates a missing file.
[[nodiscard]] bool AppendLineToFile(const std::string& path, const std::string& line);

/// Whether a line of the file equals the given one. The function's name is misspelled on purpose:
/// the suite's components know it so.
[[nodiscard]] bool SeachFileForMatchingLine(const std::string& path, const std::string& line);

/// Removes every line that equals the given one. If no such line is found, or if the file cannot be
/// read, the file stays unchanged and the result is true.
[[nodiscard]] bool RemoveFromFileMatchingLine(const std::string& path, const std::string& line);

/// Inserts the new line at the first line that begins with the prefix: before that line if before
/// is 1, after it if before has any other value. If no line begins with the prefix, nothing is
/// inserted.
[[nodiscard]] bool insertIntoFilePrePostMatchingLine(const std::string& path,
                                                     const std::string& newLine,
                                                     const std::string& matchPrefix, int before);

[[nodiscard]] bool insertIntoFilePreMatchingLine(const std::string& path,
                                                 const std::string& newLine,
                                                 const std::string& matchPrefix);

[[nodiscard]] bool insertIntoFilePostMatchingLine(const std::string& path,
                                                  const std::string& newLine,
                                                  const std::string& matchPrefix);
