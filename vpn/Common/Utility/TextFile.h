#pragma once

#include <string>
#include <vector>

// Text files are handled line by line. Every line loses its trailing carriage returns and line
// feeds when it is read; the functions that rewrite a file end every line with a bare line feed,
// so that a file with other endings deliberately comes back converted. All log their failures and
// then give false.

/// Gives the lines of a file.
[[nodiscard]] bool ReadTextFile(const std::string& path, std::vector<std::string>& lines);

/// Whether every line is white space only; an empty file counts.
[[nodiscard]] bool FileHasOnlyWhiteSpace(const std::string& path);

/// Makes the contents, up to their first zero byte, the whole of the file, which is created where
/// it is missing.
[[nodiscard]] bool SetTextFileContents(const std::string& path, const std::string& contents);

/// Appends the line and a line feed to the file, which is created where it is missing.
[[nodiscard]] bool AppendLineToFile(const std::string& path, const std::string& line);

/// Whether some line equals the given one. The name is spelled as the suite's components know it.
[[nodiscard]] bool SeachFileForMatchingLine(const std::string& path, const std::string& line);

/// Removes every line that equals the given one. A file in which none was found, also because it
/// could not be read, is left alone and counts as done.
[[nodiscard]] bool RemoveFromFileMatchingLine(const std::string& path, const std::string& line);

/// Inserts the new line ahead of the first line that begins with the prefix when the flag is 1,
/// and behind it when the flag is any other value. Where none does, nothing is inserted.
[[nodiscard]] bool insertIntoFilePrePostMatchingLine(const std::string& path,
                                                     const std::string& newLine,
                                                     const std::string& matchPrefix, int before);

[[nodiscard]] bool insertIntoFilePreMatchingLine(const std::string& path,
                                                 const std::string& newLine,
                                                 const std::string& matchPrefix);

[[nodiscard]] bool insertIntoFilePostMatchingLine(const std::string& path,
                                                  const std::string& newLine,
                                                  const std::string& matchPrefix);
