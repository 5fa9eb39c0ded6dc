#include "record/RecentTexts.h"

#include <algorithm>
#include <cstring>

namespace {

std::uint64_t loadBytes(const char* from, std::size_t count) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, from, count);
    return word;
}

/// Mixes the length and the first and last bytes: what differs between texts of one column.
std::uint32_t hashOf(std::string_view text) noexcept {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    if (text.size() >= 8) {
        head = loadBytes(text.data(), 8);
        tail = loadBytes(text.data() + text.size() - 8, 8);
    } else if (text.size() >= 4) {
        head = loadBytes(text.data(), 4);
        tail = loadBytes(text.data() + text.size() - 4, 4);
    } else {
        head = static_cast<unsigned char>(text.front());
        tail = static_cast<unsigned char>(text[text.size() / 2]) * 256u +
               static_cast<unsigned char>(text.back());
    }
    std::uint64_t mixed = (head + text.size()) * 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ (mixed >> 29) ^ tail) * 0xBF58476D1CE4E5B9u;
    return static_cast<std::uint32_t>(mixed >> 32);
}

}  // namespace

LightweightString<char> RecentTexts::share(std::size_t column, std::string_view text) {
    if (text.empty()) return {};
    if (column >= watchedColumns) return LightweightString<char>(text);
    if (column >= m_columns.size()) m_columns.resize(column + 1);
    Column& kept = m_columns[column];
    if (kept.rest > 0) {
        --kept.rest;
        return LightweightString<char>(text);
    }
    if (kept.places.empty()) kept.places.resize(placesPerColumn);

    const std::uint32_t hash = hashOf(text);
    Place& place = kept.places[hash % placesPerColumn];
    if (place.hash == hash && place.text.view() == text) {
        kept.patience = std::min(kept.patience + worthOfHit, fullPatience);
        return place.text;
    }
    place.text = LightweightString<char>(text);
    place.hash = hash;
    if (--kept.patience == 0) {
        kept.rest = longRest;
        kept.patience = fullPatience / 2;
    }
    return place.text;
}
