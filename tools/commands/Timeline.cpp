// kesta timeline: the records of a log along their time codes, as a picture or as text.
#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "support/time_def.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/OutputFile.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"
#include "tools/timeline/TimelineSvg.h"
#include "tools/timeline/TimelineText.h"

namespace {

struct Options {
    std::string log;
    // Either a picture or text.
    std::string output;  // the picture's file, "-" for standard output
    bool text = false;
    std::optional<unsigned> width;  // of the text, in characters
    std::string lanes = "Reel";     // columns
    std::string start = "Start time";
    std::string end = "End time";
    std::optional<std::string> rate;  // as FrameRate reads it
    bool common = false;              // one axis for all lanes
    bool allWarnings = false;
    Saving saving;
};

void requireOneForm(const Options& options) {
    if (options.text || !options.output.empty()) return;
    throw Failure("timeline needs -o FILE or --text", exitUsage);
}

// --- The frame rate ---

struct KnownRate {
    FrameRate rate;
    std::string origin;
};

bool isRateKey(std::string_view key) {
    std::string letters;
    std::copy_if(key.begin(), key.end(), std::back_inserter(letters),
                 [](char c) { return c != ' ' && c != '_' && c != '-'; });
    return Ascii::equalFolded(letters, "FPS") || Ascii::equalFolded(letters, "FrameRate");
}

bool beginsWithDropFrame(const kesta& log, unsigned column) {
    for (unsigned row = 0; row < log.get_num_records(); ++row) {
        const time_def code(log.getField(row, column).c_str(), eTimecodeLabel);
        if (code.valid()) return code.dropFrame();
    }
    return false;
}

KnownRate rateOf(const kesta& log, const Options& options, unsigned startColumn) {
    if (options.rate) {
        const std::optional<FrameRate> rate = FrameRate::parse(*options.rate);
        if (!rate) throw Failure("--fps: \"" + *options.rate + "\" is no frame rate", exitUsage);
        return {*rate, "as given"};
    }
    for (const auto& param : log.params()) {
        if (!isRateKey(param.name().view())) continue;
        const std::optional<FrameRate> rate = FrameRate::parse(param.value().view());
        if (rate) return {*rate, "from the log"};
        warn("the parameter " + std::string(param.name().view()) + " is \"" +
             std::string(param.value().view()) + "\", which is no frame rate");
    }
    const char* const usual = beginsWithDropFrame(log, startColumn) ? "29.97" : "24";
    return {*FrameRate::parse(usual), "assumed"};
}

// --- The form of the text ---

std::optional<std::size_t> widthFromEnvironment() {
    const char* const columns = std::getenv("COLUMNS");
    if (!columns) return std::nullopt;
    const unsigned width = Zr::UIntFromString(LightweightString<char>(columns), 0);
    return width > 0 ? std::optional<std::size_t>(width) : std::nullopt;
}

std::size_t textWidth(const Options& options, const LineSink& out) {
    constexpr std::size_t usual = 80;
    constexpr std::size_t widest = 1000;
    if (options.width) return *options.width;
    std::size_t width = usual;
    if (const auto terminal = out.terminal()) width = terminal->columns;
    if (const auto wanted = widthFromEnvironment()) width = *wanted;
    return std::clamp(width, TimelineTextForm::narrowest, widest);
}

/// As the user's environment says; the program's own locale is set for the widths of characters.
bool isUnicodeLocale() {
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (!value || !*value) continue;
        std::string letters = Ascii::folded(value);
        letters.erase(std::remove(letters.begin(), letters.end(), '-'), letters.end());
        return letters.find("utf8") != std::string::npos;
    }
    return false;
}

// --- The work ---

void warnOfProblems(const std::string& path, const Timeline& timeline, bool all) {
    Warnings warnings(all);
    for (const TimelineProblem& problem : timeline.problems) {
        warnings.add(path + ": not shown: " + describe(problem));
    }
    warnings.summarise("--all-warnings lists them all");
}

int run(const Options& options) {
    requireOneForm(options);
    OutputFile output(options.log, options.output, options.saving);
    const LogForReading opened = openLog(options.log);
    kesta& log = *opened.log;
    const TimelineColumns columns{columnNamed(log, options.lanes), columnNamed(log, options.start),
                                  columnNamed(log, options.end)};
    const KnownRate known = rateOf(log, options, columns.start);
    const TimelineDays days = options.common ? TimelineDays::common : TimelineDays::eachLane;
    const Timeline timeline = makeTimeline(log, columns, known.rate, days);
    warnOfProblems(options.log, timeline, options.allWarnings);
    if (timeline.records == 0) {
        throw Failure(options.log + (timeline.problems.empty() ? ": there are no records to show"
                                                               : ": no record has time codes to show it by"));
    }
    const TimelineCaption caption{std::filesystem::path(shownName(options.log)).filename().string(),
                                  log.get_fieldname(columns.lane), known.rate, known.origin, days};
    output.write(LineEnd::lf, counted(timeline.records, "record"), [&](LineSink& out) {
        if (options.text) {
            writeTimelineText(timeline, caption, {textWidth(options, out), !isUnicodeLocale()}, out);
        } else {
            writeTimelineSvg(timeline, caption, out);
        }
    });
    return timeline.problems.empty() ? opened.exitCode : exitFindings;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSource(app, options.log);
    CLI::Option* const output =
        Arguments::addOutput(app, options.output, "the picture to write, - for standard output");
    CLI::Option* const text =
        app.add_flag("--text", options.text, "show it as text instead")->excludes(output);
    app.add_option("--width", options.width, "the characters of a line, instead of the terminal's")
        ->check(CLI::Range(40, 1000))
        ->needs(text);
    app.add_option("--lanes", options.lanes, "the column whose values are the lanes")
        ->type_name("COLUMN")
        ->capture_default_str();
    app.add_option("--start", options.start, "the column where records start")
        ->type_name("COLUMN")
        ->capture_default_str();
    app.add_option("--end", options.end, "the column where they end")
        ->type_name("COLUMN")
        ->capture_default_str();
    app.add_option("--fps", options.rate, "the frames a second, as in 25 or 29.97");
    app.add_flag("--common", options.common, "one axis for all lanes");
    app.add_flag("--all-warnings", options.allWarnings, "list every record that cannot be shown");
    Arguments::addSaving(app, options.saving, Arguments::replacing);
    Arguments::requireOutputForSaving(app);
}

}  // namespace

Command Commands::timeline() {
    return makeCommand(
        "timeline", "Draw the records along their time codes",
        "kesta timeline day1.log -o day1.svg\n  kesta timeline day1.log --text\n\n"
        "Each reel is a lane that begins with its first time code; all have the same scale. Tagged records\n"
        "are marked, overlaps and gaps are shown. Long gaps are drawn shorter. Codes count frames at the\n"
        "log's parameter FPS or \"Frame rate\"; without one at 24, or at 29.97 when they are drop frame.\n"
        "Records without sensible time codes are named, and the exit code is 1 then.",
        declare, run);
}
