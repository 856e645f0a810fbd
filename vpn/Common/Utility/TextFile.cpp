#include "TextFile.h"

#include <exception>
#include <fstream>

#include "AppLog.h"
#include "StringUtils.h"

namespace {

enum class ReadOutcome { kNotOpened, kFailed, kStopped, kComplete };

// Returns false also if there is no memory for the stream's buffer.
template <class Stream>
bool Open(Stream& file, const std::string& path, std::ios::openmode mode) {
    try {
        file.open(path, mode);
        return file.is_open();
    } catch (const std::exception&) {
        return false;
    }
}

// Passes each line, without its line breaks, to the visitor until the visitor returns false.
template <class Visitor>
ReadOutcome ReadLines(const std::string& path, Visitor visit) try {
    std::ifstream file;
    if (!Open(file, path, std::ios::in | std::ios::binary)) {
        return ReadOutcome::kNotOpened;
    }
    for (std::string line; std::getline(file, line);) {
        if (!visit(CStringUtils::TrimRight(line, true))) {
            return ReadOutcome::kStopped;
        }
    }
    return file.eof() ? ReadOutcome::kComplete : ReadOutcome::kFailed;
} catch (const std::exception&) {
    return ReadOutcome::kFailed;
}

bool IsWhiteSpace(const std::string& line) {
    return line.find_first_not_of(" \n\r\t\f\v") == std::string::npos;
}

}  // namespace

bool ReadTextFile(const std::string& path, std::vector<std::string>& lines) {
    lines.clear();
    if (path.empty()) {
        TK_LOG_ERROR("Invalid file name");
        return false;
    }
    const ReadOutcome outcome = ReadLines(path, [&](std::string line) {
        lines.push_back(std::move(line));
        return true;
    });
    if (outcome == ReadOutcome::kNotOpened) {
        TK_LOG_ERROR("Failed to open file %s", path.c_str());
    } else if (outcome == ReadOutcome::kFailed) {
        TK_LOG_ERROR("Failed to inspect all lines in file %s", path.c_str());
    }
    return outcome == ReadOutcome::kComplete;
}

bool FileHasOnlyWhiteSpace(const std::string& path) {
    if (path.empty()) {
        TK_LOG_ERROR("File name argument is invalid");
        return false;
    }
    const ReadOutcome outcome = ReadLines(path, IsWhiteSpace);
    if (outcome == ReadOutcome::kNotOpened) {
        TK_LOG_ERROR("Failed to open file %s", path.c_str());
    } else if (outcome == ReadOutcome::kFailed) {
        TK_LOG_ERROR("Failed to inspect all lines in file %s", path.c_str());
    }
    return outcome == ReadOutcome::kComplete;
}

bool SetTextFileContents(const std::string& path, const std::string& contents) {
    if (path.empty()) {
        TK_LOG_ERROR("File name argument is invalid");
        return false;
    }
    std::ofstream file;
    if (!Open(file, path, std::ios::out | std::ios::binary | std::ios::trunc)) {
        TK_LOG_ERROR("Failed to open file %s", path.c_str());
        return false;
    }
    // Writes up to the first zero byte, because contents are text.
    // cppcheck-suppress stlcstrStream
    file << contents.c_str();
    file.close();
    if (!file) {
        TK_LOG_ERROR("Failed to update file %s", path.c_str());
        return false;
    }
    return true;
}

bool AppendLineToFile(const std::string& path, const std::string& line) {
    if (path.empty() || line.empty()) {
        TK_LOG_ERROR("At least one argument is invalid");
        return false;
    }
    std::ofstream file;
    if (!Open(file, path, std::ios::out | std::ios::binary | std::ios::app)) {
        TK_LOG_ERROR("Failed to open file %s", path.c_str());
        return false;
    }
    file << line << '\n' << std::flush;
    if (!file) {
        TK_LOG_ERROR("Failed to append to file %s", path.c_str());
        return false;
    }
    return true;
}

bool SeachFileForMatchingLine(const std::string& path, const std::string& line) {
    if (path.empty() || line.empty()) {
        TK_LOG_ERROR("At least one argument is invalid");
        return false;
    }
    const ReadOutcome outcome =
        ReadLines(path, [&](const std::string& candidate) { return candidate != line; });
    if (outcome == ReadOutcome::kNotOpened) {
        TK_LOG_ERROR("Failed to open file %s", path.c_str());
    } else if (outcome == ReadOutcome::kFailed) {
        TK_LOG_ERROR("Failed to inspect all lines in file %s", path.c_str());
    }
    return outcome == ReadOutcome::kStopped;
}

namespace {

// Writes the edited text back if the whole file was read. Returns null on success, otherwise the
// failure, which the editing function logs.
const char* Rewrite(const std::string& path, ReadOutcome outcome, const std::string& text) {
    if (outcome == ReadOutcome::kNotOpened) {
        return "Failed to open file";
    }
    if (outcome == ReadOutcome::kFailed) {
        return "Failed to fully inspect file";
    }
    return SetTextFileContents(path, text) ? nullptr : "Failed to update file";
}

}  // namespace

bool RemoveFromFileMatchingLine(const std::string& path, const std::string& line) {
    if (path.empty() || line.empty()) {
        TK_LOG_ERROR("At least one argument is invalid");
        return false;
    }
    if (!SeachFileForMatchingLine(path, line)) {
        return true;
    }
    std::string kept;
    const ReadOutcome outcome = ReadLines(path, [&](const std::string& candidate) {
        kept += candidate != line ? candidate + "\n" : "";
        return true;
    });
    if (const char* const failure = Rewrite(path, outcome, kept)) {
        TK_LOG_ERROR("%s %s", failure, path.c_str());
        return false;
    }
    return true;
}

bool insertIntoFilePrePostMatchingLine(const std::string& path, const std::string& newLine,
                                       const std::string& matchPrefix, int before) {
    if (path.empty() || newLine.empty() || matchPrefix.empty()) {
        TK_LOG_ERROR("At least one argument is invalid");
        return false;
    }
    std::string text;
    bool inserted = false;
    const ReadOutcome outcome = ReadLines(path, [&](const std::string& line) {
        const bool isAnchor = !inserted && CStringUtils::StartsWith(line, matchPrefix);
        inserted = inserted || isAnchor;
        text += isAnchor && before == 1 ? newLine + "\n" : "";
        text += line + "\n";
        text += isAnchor && before != 1 ? newLine + "\n" : "";
        return true;
    });
    if (const char* const failure = Rewrite(path, outcome, text)) {
        TK_LOG_ERROR("%s %s", failure, path.c_str());
        return false;
    }
    return true;
}

bool insertIntoFilePreMatchingLine(const std::string& path, const std::string& newLine,
                                   const std::string& matchPrefix) {
    return insertIntoFilePrePostMatchingLine(path, newLine, matchPrefix, 1);
}

bool insertIntoFilePostMatchingLine(const std::string& path, const std::string& newLine,
                                    const std::string& matchPrefix) {
    return insertIntoFilePrePostMatchingLine(path, newLine, matchPrefix, 0);
}
