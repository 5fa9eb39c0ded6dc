#include "tools/forms/ShowView.h"

#include "tools/Failure.h"
#include "tools/forms/TablePrinter.h"
#include "tools/forms/Writers.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogView.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Presentation.h"
#include "tools/terminal/StandardStreams.h"

namespace {

std::vector<unsigned> chosenColumns(kesta& log, const TableOptions& options) {
    if (!options.columns.empty()) return columnsNamed(log, options.columns);
    return options.allColumns ? allColumns(log) : shownColumns(log);
}

}  // namespace

ShownViews::ShownViews(const TableOptions& options, std::size_t logs)
    : m_options(options),
      m_several(logs > 1),
      m_output(standardOutput(options.format == "csv" ? LineEnd::crlf : LineEnd::lf)) {
    if (m_several && options.format == "csv") {
        throw Failure("the columns of several logs may differ, so --format csv takes one log", exitUsage);
    }
}

void ShownViews::add(const std::string& path, kesta& log, const KSTView& view) {
    if (!m_options.sort.empty()) sortRows(*view, parseSortColumns(log, m_options.sort));
    const Selection selection{view, chosenColumns(log, m_options)};
    if (m_several) beginLog(path);
    if (m_options.format == "csv") {
        writeCsv(log, selection, *m_output);
    } else if (m_options.format == "json") {
        const JsonProperties name = {{"log", jsonText(shownName(path))}};
        writeJson(log, selection, *m_output, m_several ? name : JsonProperties());
    } else {
        printTable(log, selection, standardOutputTerminal(), *m_output);
    }
    ++m_count;
}

void ShownViews::beginLog(const std::string& path) {
    if (m_options.format == "json") {
        m_output->line(m_count == 0 ? "[" : ",");
        return;
    }
    if (m_count > 0) m_output->line("");
    m_output->line(colouredOutput(Colour::bold, harmless(shownName(path)) + ':'));
}

void ShownViews::finish() {
    if (m_several && m_options.format == "json") {
        if (m_count == 0) m_output->line("[");
        m_output->line("]");
    }
    m_output->finish();
}
