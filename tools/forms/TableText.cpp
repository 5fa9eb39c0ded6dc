#include "tools/forms/TableText.h"

#include "tools/Failure.h"
#include "tools/files/Files.h"
#include "tools/terminal/StandardStreams.h"

namespace {

bool beginsWith(const std::string& text, const char* mark) noexcept {
    return text.rfind(mark, 0) == 0;
}

}  // namespace

std::string readTableText(const std::string& path) {
    std::string text = readBytes(path);
    if (beginsWith(text, "\xFF\xFE") || beginsWith(text, "\xFE\xFF")) {
        throw Failure(shownName(path) + ": is UTF-16 text; save it as UTF-8 first");
    }
    if (text.find('\0') != std::string::npos) throw Failure(shownName(path) + ": is no text file");
    if (beginsWith(text, "\xEF\xBB\xBF")) text.erase(0, 3);
    return text;
}

bool endsLinesWithCR(std::string_view text) noexcept {
    return text.find('\n') == std::string_view::npos && text.find('\r') != std::string_view::npos;
}
