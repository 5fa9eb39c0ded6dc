// How a command ends when it cannot do what it was asked for.
#pragma once

#include <stdexcept>
#include <string>

/// The exit codes of the program, as its help states them.
enum ExitCode : int { exitDone = 0, exitFindings = 1, exitFailed = 2, exitUsage = 64 };

/// Carries the message for the user, without the program's name, and the exit code to the program's entry.
class Failure : public std::runtime_error {
 public:
    explicit Failure(const std::string& message, ExitCode exitCode = exitFailed)
        : std::runtime_error(message), m_exitCode(exitCode) {}

    ExitCode exitCode() const noexcept { return m_exitCode; }

 private:
    ExitCode m_exitCode;
};

/// A failure at a file: "path: what the system says of `error`".
Failure fileFailure(const std::string& path, int error);
