// Texts in memory. Strings that share what they hold do what plain ones do; a text file is saved the same
// whether its lines go to the disk as they come or at the end, and loads again. The first byte says which.
#include <vector>

#include "fuzz/Fuzz.h"
#include "support/TextFile.h"
#include "tests/support/StringsModel.h"

namespace {

void strings(Fuzz::Input& input) {
    StringsModel model(input);
    while (!input.empty()) {
        model.step();
        Fuzz::promise(model.holds());
    }
}

/// Of one line, without the mark that begins some files.
std::string lineText(Fuzz::Input& input) {
    // Blocks have up to 64 kilobytes: some lines are longer, a few fill one.
    constexpr unsigned times[] = {1, 1, 1, 100, 2000, 5000};
    const unsigned repeated = times[input.below(std::size(times))];
    std::string word = input.text();
    for (char& c : word) {
        if (c == '\r' || c == '\n' || c == '\xEF') c = '?';
    }
    std::string line;
    for (unsigned i = 0; i < repeated; ++i) line += word;
    return line;
}

void append(TextFile& file, const std::string& line, bool inHalves) {
    if (!inHalves) return file.appendLine(Fuzz::Text(line));
    file.beginLine(line.size() + 100);  // given up
    char* const begin = file.beginLine(line.size() + 7);
    file.endLine(begin + line.copy(begin, line.size()));
}

void files(Fuzz::Input& input) {
    const auto style = input.below(2) == 0 ? TextFile::eLF : TextFile::eCRLF;
    const unsigned beginsBefore = input.below(16);
    const auto whole = Fuzz::folder().wide("whole");
    const auto early = Fuzz::folder().wide("early");
    TextFile file;
    TextFile begun;
    std::vector<std::string> lines;
    std::string expected;
    while (!input.empty() && expected.size() < 500000) {
        if (lines.size() == beginsBefore) begun.beginSave(early, style);
        const std::string line = lineText(input);
        const bool inHalves = input.below(2) == 0;
        append(file, line, inHalves);
        append(begun, line, !inHalves);
        lines.push_back(line);
        expected += line + (style == TextFile::eLF ? "\n" : "\r\n");
        Fuzz::promise(begun.size() == lines.size() && file.lineView(file.size() - 1) == line);
    }
    Fuzz::promise(file.save(whole, style) && Fuzz::readFile(Fuzz::folder() / "whole") == expected);
    Fuzz::promise(begun.save(early, style) && Fuzz::readFile(Fuzz::folder() / "early") == expected);

    TextFile again;
    Fuzz::promise(again.load(early, '\n', false) && again.size() == lines.size());
    for (unsigned i = 0; i < lines.size(); ++i) Fuzz::promise(again.lineView(i) == lines[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr void (*parts[])(Fuzz::Input&) = {strings, files};
    Fuzz::Input input(data, size);
    parts[input.below(std::size(parts))](input);
    return 0;
}
