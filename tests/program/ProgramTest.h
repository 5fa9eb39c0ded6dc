// Runs the built program, as a user would, in a temporary folder.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "tests/TestSupport.h"

extern char** environ;  // NOLINT: the system's own name

/// How a run of the program ended, and what it said.
struct Outcome {
    int exitCode = -1;  // -1 when a signal ended it
    std::string out;
    std::string err;
};

/// The words of a command line, given one by one or as one line with blanks between; a word may stand between
/// single quotes.
struct Arguments : std::vector<std::string> {
    using vector::vector;
    Arguments(const char* line) : Arguments(std::string(line)) {}
    Arguments(const std::string& line) {
        for (std::size_t at = 0; (at = line.find_first_not_of(' ', at)) < line.size(); ++at) {
            const bool isQuoted = line[at] == '\'';
            const std::size_t begin = at + isQuoted;
            at = std::min(line.find(isQuoted ? '\'' : ' ', begin), line.size());
            push_back(line.substr(begin, at - begin));
        }
    }
};

/// The arguments with further ones after them.
inline Arguments operator+(Arguments arguments, const Arguments& further) {
    arguments.insert(arguments.end(), further.begin(), further.end());
    return arguments;
}

/// An environment variable that programs started meanwhile see.
class EnvironmentSetting {
 public:
    EnvironmentSetting(const char* name, const std::string& value) : m_name(name) {
        if (const char* const before = std::getenv(name)) m_before = before;
        setenv(name, value.c_str(), 1);
    }
    EnvironmentSetting(const EnvironmentSetting&) = delete;
    EnvironmentSetting& operator=(const EnvironmentSetting&) = delete;
    ~EnvironmentSetting() {
        if (m_before) {
            setenv(m_name, m_before->c_str(), 1);
        } else {
            unsetenv(m_name);
        }
    }

 private:
    const char* m_name;
    std::optional<std::string> m_before;
};

class ProgramTest : public TestSupport::TempFolderTest {
 protected:
    /// Runs the program with these arguments in the temporary folder. Standard output goes to a file, or to
    /// `output` when given.
    Outcome run(Arguments arguments, const std::string& output = {}, const std::string& input = "/dev/null") {
        const std::string out = output.empty() ? path(".out") : output;
        const std::string err = path(".err");
        arguments.insert(arguments.begin(), KESTA_PROGRAM);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);

        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addchdir_np(&actions, folder.path().c_str());
        posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        pid_t child = 0;
        const int failure = posix_spawn(&child, KESTA_PROGRAM, &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (failure != 0) throw std::runtime_error("cannot start the program");
        int status = 0;
        waitpid(child, &status, 0);

        Outcome result;
        if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
        if (output.empty()) result.out = TestSupport::readFile(out);
        result.err = TestSupport::readFile(err);
        std::filesystem::remove(err);
        if (output.empty()) std::filesystem::remove(out);
        return result;
    }

    /// A command line that the program refuses, and what it says then.
    struct Refused {
        Arguments arguments;
        int exitCode;
        std::string why;
    };

    /// Each is refused with its reason on standard error, nothing on standard output, and no file touched.
    void expectRefused(const std::vector<Refused>& cases) {
        const auto before = files();
        for (const Refused& refused : cases) {
            SCOPED_TRACE(testing::PrintToString(refused.arguments));
            const Outcome outcome = run(refused.arguments);
            EXPECT_EQ(outcome.exitCode, refused.exitCode);
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err.find("kesta: "), 0U) << outcome.err;
            EXPECT_NE(outcome.err.find(refused.why), std::string::npos) << refused.why << '\n' << outcome.err;
            EXPECT_EQ(files(), before);
        }
    }

    /// The names of a log's columns and its records, with commas between the values and plain line ends.
    std::string records(const std::string& file, const Arguments& options = {}) {
        std::string lines = run(Arguments{"show", file, "--format", "csv"} + options).out;
        lines.erase(std::remove(lines.begin(), lines.end(), '\r'), lines.end());
        return lines;
    }

    /// All files of the folder with what is in them.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> all;
        for (const std::string& name : folder.names()) {
            all[name] = std::filesystem::is_regular_file(folder / name) ? content(name) : "";
        }
        return all;
    }

    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::string content(const std::string& name) const { return TestSupport::readFile(folder / name); }

    /// A log of these columns and record lines.
    std::string log(const std::string& name, const std::string& names, const std::string& lines,
                    const std::string& params = "") const {
        const auto columns = static_cast<std::size_t>(std::count(names.begin(), names.end(), ',')) + 1;
        std::string types = "\"text\"";
        std::string widths = "\"4\"";
        for (std::size_t i = 1; i < columns; ++i) {
            types += ",\"text\"";
            widths += ",\"4\"";
        }
        return folder
            .with(name, "\"KESTA:Rev 1\"\n" + params + "\"KESTA\"\n" + widths + '\n' + types + '\n' + names +
                            '\n' + lines)
            .string();
    }

    /// A log of these rows, whose values stand between commas, missing ones empty. The first row names the
    /// columns, as in "Name,Start time:timecode"; one without a type is text. A row that begins with a quote
    /// stands as it is.
    void table(const std::string& name, const std::vector<std::string>& rows,
               const std::string& params = "") const {
        std::string header[3];  // widths, types, names
        std::istringstream columns(rows[0]);
        std::size_t count = 0;
        for (std::string column; std::getline(columns, column, ','); ++count) {
            const std::size_t colon = std::min(column.find(':'), column.size());
            const std::string type = colon < column.size() ? column.substr(colon + 1) : "text";
            for (auto& line : header) line += count > 0 ? "," : "";
            header[0] += "\"4\"";
            header[1] += '"' + type + '"';
            header[2] += '"' + column.substr(0, colon) + '"';
        }
        std::string lines = "\"KESTA:Rev 1\"\n" + params + "\"KESTA\"\n";
        for (const auto& line : header) lines += line + '\n';
        for (std::size_t i = 1; i < rows.size(); ++i) lines += lineOf(rows[i], count) + '\n';
        folder.with(name, lines);
    }

 private:
    static std::string lineOf(const std::string& row, std::size_t columns) {
        if (row.empty() || row[0] == '"') return row;
        std::string line = "\"";
        for (const char c : row) line += c == ',' ? "\",\"" : std::string(1, c);
        for (auto i = 1 + std::count(row.begin(), row.end(), ','); i < static_cast<int>(columns); ++i)
            line += "\",\"";
        return line + '"';
    }
};
