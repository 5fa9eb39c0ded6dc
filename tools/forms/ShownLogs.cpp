#include "tools/forms/ShownLogs.h"

#include "tools/Failure.h"
#include "tools/forms/Writers.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Presentation.h"
#include "tools/terminal/StandardStreams.h"

namespace {

Heading nameOf(const std::string& path) {
    const std::string name = shownName(path);
    return {{colouredOutput(Colour::bold, harmless(name) + ':')}, {{"log", jsonText(name)}}};
}

}  // namespace

ShownLogs::ShownLogs(const Form& form, std::size_t logs)
    : m_form(form), m_several(logs > 1), m_output(standardOutput(form.lineEnd)) {
    if (m_several && !form.series) {
        throw Failure("the columns of several logs may differ, so --format " + std::string(form.name) +
                          " takes one log",
                      exitUsage);
    }
}

void ShownLogs::add(const std::string& path, const kesta& log, const Selection& selection) {
    if (m_several) line(m_count == 0 ? m_form.series->first : m_form.series->between);
    m_form.write(log, selection, m_several ? nameOf(path) : Heading(), *m_output);
    ++m_count;
}

void ShownLogs::finish() {
    if (m_several && m_count == 0) line(m_form.series->first);
    if (m_several) line(m_form.series->last);
    m_output->finish();
}

void ShownLogs::line(const char* text) {
    if (text) m_output->line(text);
}
