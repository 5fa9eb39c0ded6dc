// ZRContainerFile: what is true of container files without opening one.
#include "container/ZRContainerFile.h"

#include <algorithm>
#include <string_view>

#include "support/Ascii.h"
#include "support/StringFunctions.h"

namespace {

bool endsWith(const LightweightString<wchar_t>& text, std::wstring_view lowerCaseEnding) {
    const std::wstring_view all = text.view();
    if (all.size() < lowerCaseEnding.size()) return false;
    const std::wstring_view ending = all.substr(all.size() - lowerCaseEnding.size());
    return std::equal(ending.begin(), ending.end(), lowerCaseEnding.begin(),
                      [](wchar_t c, wchar_t wanted) { return Ascii::fold(c) == wanted; });
}

constexpr unsigned char containerQualifier = 255;

}  // namespace

const char* ZRContainerFile::getNameParamKey() noexcept {
    return "Name";
}

const char* ZRContainerFile::getPermanentParamKey() noexcept {
    return "Permanent";
}

Cookie ZRContainerFile::getCookieFromFilename(const LightweightString<wchar_t>& fileName) {
    const Cookie cookie(stripPathAndExt(fileName), false);
    if (endsWith(fileName, L"sg")) return convertCookie(cookie, 'M', containerQualifier);
    if (endsWith(fileName, L"rak")) return convertCookie(cookie, 'B', containerQualifier);
    return cookie;
}
