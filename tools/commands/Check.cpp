// kesta check: what is wrong with logs, and where.
#include <algorithm>
#include <map>
#include <unordered_map>

#include "record/StandardColumns.h"
#include "record/dbrecord.h"
#include "support/Ascii.h"
#include "support/Cookie.h"
#include "support/time_def.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogForm.h"
#include "tools/logs/LogReading.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Progress.h"

namespace {

struct Options {
    std::vector<std::string> logs;
};

/// Looks at what the records say: identifiers that come twice, codes that end before they start.
class RecordChecks : public RecordVisitor {
 public:
    void begin(unsigned line, const std::vector<std::string>& columnNames,
               std::vector<Finding>& findings) override {
        m_names = columnNames;
        checkNames(line, findings);
        m_cookie = columnNamed("Cookie");
        for (const StandardColumn& standard : StandardColumns::all) {
            if (standard.end.empty()) continue;
            const Pair columns{columnNamed(standard.name), columnNamed(standard.end)};
            if (columns.start < m_names.size() && columns.end < m_names.size()) m_pairs.push_back(columns);
        }
    }

    void record(unsigned line, const dbrecord& fields, std::vector<Finding>& findings) override {
        if (m_cookie < m_names.size()) checkIdentifier(line, fields, findings);
        for (const Pair& pair : m_pairs) checkCodes(pair, line, fields, findings);
    }

 private:
    struct HashOfCookie {
        std::size_t operator()(const Cookie& id) const noexcept { return id.hash(); }
    };
    struct Pair {
        std::size_t start;
        std::size_t end;
    };

    std::size_t columnNamed(std::string_view name) const {
        const auto found = std::find_if(m_names.begin(), m_names.end(),
                                        [&](const std::string& other) { return sameName(name, other); });
        return static_cast<std::size_t>(found - m_names.begin());
    }

    static const LightweightString<char>& field(const dbrecord& fields, std::size_t column) {
        return fields.getField(static_cast<unsigned short>(column));
    }

    void report(unsigned line, std::size_t column, std::string text, std::vector<Finding>& findings) const {
        findings.push_back({line, static_cast<unsigned>(column + 1), {}, std::move(text), false});
    }

    void checkNames(unsigned line, std::vector<Finding>& findings) const {
        std::map<std::string, std::size_t> columns;
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            std::string name = m_names[i];
            for (char& c : name) c = Ascii::fold(c);
            const auto place = columns.emplace(std::move(name), i);
            if (place.second) continue;
            report(line, i,
                   "the name is that of column " + std::to_string(place.first->second + 1) +
                       " too, and commands find only that one; give one of the columns another",
                   findings);
        }
    }

    void checkIdentifier(unsigned line, const dbrecord& fields, std::vector<Finding>& findings) {
        const Cookie id(field(fields, m_cookie).c_str(), false);
        if (id.isNull()) return;
        const auto place = m_linesById.emplace(id, line);
        if (place.second) return;
        report(line, m_cookie,
               "the identifier is that of line " + std::to_string(place.first->second) +
                   " too, and look-ups find only that one; give one of the records another",
               findings);
    }

    void checkCodes(const Pair& pair, unsigned line, const dbrecord& fields,
                    std::vector<Finding>& findings) const {
        const time_def start(field(fields, pair.start).c_str(), eTimecodeLabel);
        const time_def end(field(fields, pair.end).c_str(), eTimecodeLabel);
        if (!start.valid() || !end.valid()) return;
        // Eight digits, hours first: their order as text is their order in time.
        constexpr std::size_t digits = 8;
        if (end.get_database_str().view().substr(0, digits) >=
            start.get_database_str().view().substr(0, digits))
            return;
        report(line, pair.end,
               std::string(end.get_punctuated_str().view()) + " is before the start, " +
                   std::string(start.get_punctuated_str().view()) +
                   "; correct one, unless the take passes midnight",
               findings);
    }

    std::vector<std::string> m_names;
    std::size_t m_cookie = 0;
    std::vector<Pair> m_pairs;
    std::unordered_map<Cookie, unsigned, HashOfCookie> m_linesById;
};

LogReading checked(const std::string& path) {
    const Progress progress("checking", path);
    RecordChecks checks;
    return readLog(path, &checks);
}

int run(const Options& options) {
    const auto output = standardOutput();
    const int exitCode = forEveryLog(options.logs, [&](const std::string& path) -> int {
        LogReading reading = checked(path);
        if (reading.trimmed) reading.findings.push_back(*reading.trimmed);
        for (const Finding& finding : reading.findings) output->line(harmless(describe(path, finding)));
        return reading.findings.empty() ? exitDone : exitFindings;
    });
    output->finish();
    return exitCode;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSources(app, options.logs);
}

}  // namespace

Command Commands::check() {
    return makeCommand("check", "Say what is wrong with logs, and where", "kesta check day1.log day2.log",
                       declare, run);
}
