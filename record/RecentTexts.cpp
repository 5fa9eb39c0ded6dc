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

void RecentTexts::append(Fields& fields, std::string_view text) {
    LightweightString<char>& field = fields.emplace_back();
    if (text.empty()) return;
    const std::size_t column = fields.size() - 1;
    Place* place = nullptr;
    if (Column* const kept = columnToWatch(column)) {
        const std::uint32_t hash = hashOf(text);
        place = &kept->places[hash % placesPerColumn];
        if (place->hash == hash && place->text.view() == text) {
            kept->patience = std::min(kept->patience + worthOfHit, fullPatience);
            field = place->text;
            return;
        }
        place->hash = hash;
        if (--kept->patience == 0) {
            kept->rest = longRest;
            kept->patience = fullPatience / 2;
        }
    }
    note(text, {column, place});
}

void RecentTexts::note(std::string_view text, Target target) {
    if (m_noted == m_notedTexts.size()) {
        m_notedTexts.resize(m_noted + 32);
        m_notedTargets.resize(m_noted + 32);
    }
    m_notedTexts[m_noted] = text;
    m_notedTargets[m_noted] = target;
    ++m_noted;
}

RecentTexts::Column* RecentTexts::columnToWatch(std::size_t column) {
    if (column >= watchedColumns) return nullptr;
    if (column >= m_columns.size()) m_columns.resize(column + 1);
    Column& kept = m_columns[column];
    if (kept.rest > 0) {
        --kept.rest;
        return nullptr;
    }
    if (kept.places.empty()) kept.places.resize(placesPerColumn);
    return &kept;
}

void RecentTexts::makeNoted(Fields& fields) {
    const Target* target = m_notedTargets.data();
    LightweightString<char>::makeTogether(m_notedTexts.data(), m_notedTexts.data() + m_noted,
                                          [&](LightweightString<char>&& text) {
                                              if (target->place) target->place->text = text;
                                              fields[target->field] = std::move(text);
                                              ++target;
                                          });
    m_noted = 0;
    m_fieldsOfLine = fields.size();
}
