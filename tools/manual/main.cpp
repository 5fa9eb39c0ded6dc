// Fills a template of the manual page or of a shell's completion in: kesta_manual TEMPLATE OUTPUT. Part of
// the build, so that neither can differ from what the program takes.
#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include "record/kesta.h"
#include "tools/manual/Sections.h"

namespace {

using Sections = std::map<std::string, std::string>;

Sections sectionsOf(const ProgramModel& program) {
    return {{"VERSION", kestaDllVersionStr()},
            {"MANUAL_COMMANDS", manualCommands(program)},
            {"MANUAL_COMMON_OPTIONS", manualCommonOptions(program)},
            {"BASH_COMMANDS", bashCommands(program)},
            {"BASH_NAMES", bashNames(program)},
            {"ZSH_COMMANDS", zshCommands(program)},
            {"ZSH_NAMES", zshNames(program)},
            {"ZSH_OPTIONS", zshOptions(program)},
            {"FISH_COMMANDS", fishCommands(program)},
            {"FISH_VALUES", fishValues(program)}};
}

/// A line that is only a section's name between "%%"s becomes the section; inside a line it is put in.
std::string filled(std::string line, const Sections& sections) {
    const std::size_t begin = line.find("%%");
    if (begin == std::string::npos) return line + '\n';
    const std::size_t end = line.find("%%", begin + 2);
    const auto section = sections.find(line.substr(begin + 2, end - begin - 2));
    if (end == std::string::npos || section == sections.end()) {
        throw std::runtime_error("no section for " + line);
    }
    const bool isWhole = begin == 0 && end + 2 == line.size();
    return line.replace(begin, end + 2 - begin, section->second) + (isWhole ? "" : "\n");
}

void fill(const char* from, const char* to) {
    std::ifstream input(from);
    if (!input) throw std::runtime_error(std::string("cannot read ") + from);
    const Sections sections = sectionsOf(readCommandLine());
    std::ofstream output(to);
    for (std::string line; std::getline(input, line);) output << filled(line, sections);
    if (!output.flush()) throw std::runtime_error(std::string("cannot write ") + to);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) throw std::runtime_error("usage: kesta_manual TEMPLATE OUTPUT");
        fill(argv[1], argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kesta_manual: %s\n", error.what());
        return 1;
    }
}
