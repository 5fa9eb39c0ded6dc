// Settings of the process, and configuration blocks.
#include "support/Configuration.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <optional>

#include "support/Ascii.h"

namespace {

class Settings {
 public:
    void set(const char* name, int value) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_values[name] = value;
    }

    std::optional<int> find(const char* name) {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto found = m_values.find(name);
        if (found == m_values.end()) return std::nullopt;
        return found->second;
    }

 private:
    std::mutex m_lock;
    std::map<LightweightString<char>, int> m_values;
};

Settings& settings() {
    static Settings theSettings;
    return theSettings;
}

/// A whole number; one beyond the range of int is the nearest int.
std::optional<int> wholeNumber(std::string_view text) noexcept {
    const std::string_view digits = Ascii::trimmed(text);
    const char* const end = digits.data() + digits.size();
    int number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error == std::errc::invalid_argument || stop != end) return std::nullopt;
    if (error == std::errc()) return number;
    using Limits = std::numeric_limits<int>;
    return digits.front() == '-' ? Limits::min() : Limits::max();
}

std::optional<int> fromEnvironment(const char* name) {
    LightweightString<char> variable("KESTA_");
    for (const char* c = name; *c; ++c) variable += Ascii::upper(*c);
    const char* const text = std::getenv(variable.c_str());
    return text ? wholeNumber(text) : std::nullopt;
}

}  // namespace

int config_int(const char* name, int fallback, int lowest, int highest) {
    const char* const key = name ? name : "";
    std::optional<int> value = settings().find(key);
    if (!value) value = fromEnvironment(key);
    return std::min(std::max(value.value_or(fallback), lowest), highest);
}

void config_set_int(const char* name, int value) {
    settings().set(name ? name : "", value);
}

strp_field::strp_field() = default;

void strp_field::set(const LightweightString<char>& value) {
    m_value = value;
}

configb::configb() = default;
configb::~configb() = default;

void configb::set(const char* key, const strp_field& value) {
    m_values[key] = value;
}

const strp_field* configb::find(const char* key) const {
    const auto found = m_values.find(key);
    return found == m_values.end() ? nullptr : &found->second;
}
