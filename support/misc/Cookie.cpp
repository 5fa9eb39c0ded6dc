// Cookie: the text forms of an identifier, and its order.
#include "support/Cookie.h"

#include <cstring>
#include <sys/random.h>

#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "support/misc/NameHash.h"

namespace {

constexpr std::size_t plainLength = 1 + 32 + 2;
constexpr std::size_t groupedLength = plainLength + 4;
constexpr CookieType nameKind = 'N';

constexpr bool hyphenBefore(std::size_t byte) noexcept {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

struct HexValues {
    std::array<std::uint8_t, 256> of{};
    constexpr HexValues() {
        for (auto& value : of) value = notHex;
        for (std::uint8_t i = 0; i < 10; ++i) of[std::size_t('0') + i] = i;
        for (std::uint8_t i = 0; i < 6; ++i) {
            of[std::size_t('a') + i] = of[std::size_t('A') + i] = static_cast<std::uint8_t>(10 + i);
        }
    }
    static constexpr std::uint8_t notHex = 0xFF;
};
constexpr HexValues hexValues;

/// Takes bytes off the front of an identifier's text.
class Reader {
 public:
    explicit Reader(std::string_view text) noexcept : m_text(text.data()) {}

    std::uint8_t byte() noexcept {
        const std::uint8_t high = hexValues.of[static_cast<unsigned char>(m_text[0])];
        const std::uint8_t low = hexValues.of[static_cast<unsigned char>(m_text[1])];
        m_text += 2;
        m_good = m_good && high != HexValues::notHex && low != HexValues::notHex;
        return static_cast<std::uint8_t>(high << 4 | low);
    }

    void hyphen() noexcept { m_good = *m_text++ == '-' && m_good; }

    bool good() const noexcept { return m_good; }

 private:
    const char* m_text;
    bool m_good = true;
};

/// Reads the text form into `cookie` and returns true; false, without a change, when `text` is no text form.
bool readTextForm(std::string_view text, Cookie& cookie) noexcept {
    const bool grouped = text.size() == groupedLength;
    if ((!grouped && text.size() != plainLength) || !Ascii::isLetter(text[0])) return false;

    Reader reader(text.substr(1));
    Zr::UUID uuid;
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        if (grouped && hyphenBefore(i)) reader.hyphen();
        uuid.bytes[i] = reader.byte();
    }
    const unsigned char qualifier = reader.byte();
    if (reader.good()) cookie = Cookie(uuid, text[0], qualifier);
    return reader.good();
}

Cookie read(std::string_view text) noexcept {
    const std::string_view trimmed = Ascii::trimmed(text);
    Cookie cookie;
    if (!trimmed.empty() && !readTextForm(trimmed, cookie)) {
        cookie = Cookie(hashOfName(trimmed), nameKind, 0);
    }
    return cookie;
}

char* writeByte(char* to, std::uint8_t byte) noexcept {
    constexpr char digits[] = "0123456789abcdef";
    *to++ = digits[byte >> 4];
    *to++ = digits[byte & 0xF];
    return to;
}

}  // namespace

Cookie::Cookie(const Zr::UUID& uuid, CookieType type, unsigned char qualifier) noexcept {
    if (!Ascii::isLetter(type)) return;
    m_uuid = uuid;
    m_type = Ascii::upper(type);
    m_qualifier = qualifier;
}

Cookie::Cookie(const char* text, bool /*flag*/) noexcept : Cookie(read(text ? text : "")) {}

Cookie::Cookie(const LightweightString<wchar_t>& text, bool /*flag*/) : Cookie(read(toUTF8(text).view())) {}

LightweightString<char> Cookie::asString(bool flag) const {
    if (isNull()) return {};
    char text[groupedLength];
    char* end = text;
    *end++ = m_type;
    for (std::size_t i = 0; i < m_uuid.bytes.size(); ++i) {
        if (flag && hyphenBefore(i)) *end++ = '-';
        end = writeByte(end, m_uuid.bytes[i]);
    }
    end = writeByte(end, m_qualifier);
    return {text, static_cast<unsigned>(end - text)};
}

int Cookie::compare(const Cookie& other) const noexcept {
    const int byUuid = std::memcmp(m_uuid.bytes.data(), other.m_uuid.bytes.data(), m_uuid.bytes.size());
    if (byUuid != 0) return byUuid;
    if (m_type != other.m_type) return m_type - other.m_type;
    return m_qualifier - other.m_qualifier;
}

std::size_t Cookie::hash() const noexcept {
    static const std::uint64_t seed = [] {
        std::uint64_t random = 0;
        if (::getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random) random = 0;
        return random;
    }();
    std::uint64_t words[2];
    static_assert(sizeof words == sizeof m_uuid.bytes);
    std::memcpy(words, m_uuid.bytes.data(), sizeof words);
    const std::uint64_t rest = std::uint64_t(static_cast<unsigned char>(m_type)) << 8 | m_qualifier;
    return spread(spread(words[0] ^ seed) + words[1] + rest);
}

Cookie convertCookie(const Cookie& cookie, CookieType type, unsigned char qualifier) noexcept {
    return Cookie(cookie.uuid(), type, qualifier);
}
