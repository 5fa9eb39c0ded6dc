// Arguments that several commands have.
//
// Thread-safety: one thread at a time.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/files/Saving.h"

namespace Arguments {

/// The log that a command changes.
void addLog(CLI::App& app, std::string& log);

/// The log that a command reads, or the logs.
void addSource(CLI::App& app, std::string& log);
void addSources(CLI::App& app, std::vector<std::string>& logs);

/// Rows as RowRanges.h reads them.
CLI::Option* addRows(CLI::App& app, const char* option, std::optional<std::string>& rows, const char* what);

/// One of these forms.
CLI::Option* addFormat(CLI::App& app, std::string& format, const std::vector<std::string>& formats);

CLI::Option* addOutput(CLI::App& app, std::string& output, const char* what);

/// Lists of columns as columnsNamed reads them.
CLI::Option* addColumnList(CLI::App& app, const char* option, std::vector<std::string>& lists,
                           const char* what);

CLI::Option* addAllColumns(CLI::App& app, bool& allColumns);

/// `force` says what the command does only when it is forced to.
void addSaving(CLI::App& app, Saving& saving, const char* force);
constexpr const char* replacing = "replace a file that is there already";

/// For a command that saves only with --output: what it saves with needs that.
void requireOutputForSaving(CLI::App& app);

/// The log and the saving of a command that changes a log.
void addEdit(CLI::App& app, std::string& log, Saving& saving);

/// What there is to say about texts that are looked for in columns, for a command's notes.
extern const std::string searchRules;

}  // namespace Arguments
