// The command line: which commands there are and what they take.
#pragma once

/// Runs the command that the arguments name and answers the program's exit code. Throws Failure when the
/// command fails.
int runCommandLine(int argc, char** argv);
