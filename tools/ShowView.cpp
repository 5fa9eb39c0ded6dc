#include "tools/ShowView.h"

#include "tools/ColumnMap.h"
#include "tools/DisplayText.h"
#include "tools/Failure.h"
#include "tools/LogFile.h"
#include "tools/LogView.h"
#include "tools/Presentation.h"
#include "tools/StandardStreams.h"
#include "tools/TablePrinter.h"
#include "tools/Writers.h"

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
