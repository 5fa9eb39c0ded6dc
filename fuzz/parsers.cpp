// The small parsers of the support libraries, each on any text. The first byte says which.
#include <string>

#include "fuzz/Fuzz.h"
#include "support/Cookie.h"
#include "support/NotifyMsg.h"
#include "support/time_def.h"

namespace {

void cookie(Fuzz::Input& input) {
    const std::string text = input.rest();
    const Cookie id(text.c_str(), false);
    for (const bool grouped : {false, true}) {
        const Fuzz::Text written = id.asString(grouped);
        Fuzz::promise(written.empty() == id.isNull());
        Fuzz::promise(Cookie(written.c_str(), !grouped) == id);
        Fuzz::promise(Cookie(fromUTF8(written), grouped) == id);
    }
    Fuzz::promise(Cookie(fromUTF8(text.c_str()), false) == id);
    Fuzz::promise(id.hash() == Cookie(text.c_str(), true).hash());
}

// Both forms read back as the same time code; text that is none stays.
void timecode(Fuzz::Input& input) {
    const std::string text = input.rest();
    const time_def code(text.c_str(), eTimecodeLabel);
    for (const Fuzz::Text& form : {code.get_database_str(), code.get_punctuated_str()}) {
        if (!code.valid()) Fuzz::promise(form == text.c_str());
        const time_def again(form.c_str(), eTimecodeLabel);
        Fuzz::promise(again.valid() == code.valid() && again.dropFrame() == code.dropFrame());
        Fuzz::promise(again.get_database_str() == code.get_database_str());
        Fuzz::promise(again.get_punctuated_str() == code.get_punctuated_str());
    }
}

void messageWords(Fuzz::Input& input) {
    const std::string text = input.rest();
    const NotifyMsg message(Fuzz::Text(text), {});
    std::string words;
    for (NotifyMsgTokenIterator word(message); word; ++word) {
        Fuzz::promise((*word).find(' ') == std::string_view::npos);
        words += *word;
    }
    std::string expected;
    for (const char c : text) {
        if (c != ' ') expected += c;
    }
    Fuzz::promise(words == expected);
}

// Every byte sequence survives the way to wide characters and back.
void utf8(Fuzz::Input& input) {
    const std::string text = input.rest();
    const LightweightString<wchar_t> wide = fromUTF8(Fuzz::Text(text));
    Fuzz::promise(wide.length() <= text.size());
    Fuzz::promise(toUTF8(wide).view() == text);
    Fuzz::promise(stripPathAndExt(wide).length() <= wide.length());
}

void numbers(Fuzz::Input& input) {
    const std::string text = input.rest();
    const unsigned number = Zr::UIntFromString(text.c_str(), 7);
    Fuzz::promise(Zr::UIntFromString(std::to_string(number).c_str(), 8) == number);
    Zr::StringFromDouble(Zr::DoubleFromString(text.c_str()));
    bool flag = true;
    if (!BoolFromString(text.c_str(), flag)) Fuzz::promise(flag);
    const std::string other = text.substr(text.size() / 2);
    Fuzz::promise((strxcmp(text.c_str(), other.c_str()) < 0) == (strxcmp(other.c_str(), text.c_str()) > 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr void (*parsers[])(Fuzz::Input&) = {cookie, timecode, messageWords, utf8, numbers};
    Fuzz::Input input(data, size);
    parsers[input.below(std::size(parsers))](input);
    return 0;
}
