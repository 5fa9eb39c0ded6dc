// OutputFile: the file that a command makes of a log.
#include "tools/files/OutputFile.h"

#include "tools/files/Files.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/StandardStreams.h"

OutputFile::OutputFile(const std::string& input, const std::string& path, const Saving& saving)
    : m_path(path.empty() ? "-" : path), m_saving(saving) {
    if (isStandardStream(m_path)) return;
    requireOutputApart(input, m_path);
    m_claim.emplace(m_path);
    requireReplaceable(m_path, m_saving.force);
}

void OutputFile::write(LineEnd end, const std::string& content, const std::function<void(LineSink&)>& make) {
    if (isStandardStream(m_path) && !m_saving.dryRun) {
        const auto output = standardOutput(end);
        make(*output);
        output->finish();
        return;
    }
    const auto output = fileOutput(m_path, end);
    {
        const Progress progress("writing", m_path);
        make(*output);
    }
    save(m_path, m_claim ? &*m_claim : nullptr, m_saving, content, {}, [&] { output->finish(); });
}
