// How each form writes a log. Chosen by name in Form.h.
//
// Thread-safety: one thread at a time.
#pragma once

#include "tools/forms/Form.h"

/// Aligned columns of characters, one line for each row, its number in the log first. Control characters are
/// shown harmlessly. On a terminal, long values and lines are cut to fit and the header comes again with
/// every screenful; otherwise everything is written in full. In colour, tagged records stand out.
void writeTable(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out);

/// Comma-separated text by RFC 4180, a header line first. It has no place for a heading.
void writeCsv(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out);

/// The tab-separated log exchange form. Standard columns get the names it has for them, time codes their
/// punctuation. Warns of tabs and line ends in values, which become spaces. It has no place for a heading.
void writeAle(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out);

/// One object: the heading's properties; "parameters", a list of key and value; "columns", a list of name and
/// type; "records", a list of lists of texts in the order of the columns. Lists, because keys and names may
/// come twice. Warns of bytes that are no UTF-8; they become U+FFFD.
void writeJson(const kesta& log, const Selection& selection, const Heading& heading, LineSink& out);

/// The text as a JSON string; bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view bytes);

/// "row 3, column 2 (Notes)", for warnings; counted from 0 here.
std::string placeOf(const kesta& log, unsigned row, unsigned column);
