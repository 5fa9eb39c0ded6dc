// What other log forms call the columns of a standard log.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "record/StandardColumns.h"

/// The standard column that is meant by a name of another log form, ignoring case; null for a column of the
/// file's own.
const StandardColumn* standardColumnFor(std::string_view name) noexcept;

/// The columns of a log made of a file with these columns, in their order. Each name is one that a log keeps,
/// and none comes twice: where two mean the same standard column, the one that has its very name gets it,
/// else the first; further ones keep their own name, with a number when that is taken. `reserved` names count
/// as taken.
std::vector<DBFieldDesc> planColumns(const std::vector<std::string>& fileNames,
                                     const std::vector<std::string>& reserved);

/// The names that the tab-separated exchange form has for a log's columns; a column whose exchange name
/// another column has already keeps its own.
std::vector<std::string> exchangeNames(const std::vector<std::string>& logNames);
