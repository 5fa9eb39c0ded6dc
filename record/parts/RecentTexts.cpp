// Finding a text by hash, and which columns are worth watching.
#include "record/parts/RecentTexts.h"

#include <algorithm>
#include <cstring>

namespace {

std::uint64_t loadBytes(const char* from, std::size_t count) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, from, count);
    return word;
}

}  // namespace

RecentTexts::Ends::Ends(std::string_view text) noexcept : length(text.size()) {
    if (length >= 8) {
        head = loadBytes(text.data(), 8);
        tail = loadBytes(text.data() + length - 8, 8);
    } else if (length >= 4) {
        head = loadBytes(text.data(), 4);
        tail = loadBytes(text.data() + length - 4, 4);
    } else {
        head = static_cast<unsigned char>(text.front());
        tail = static_cast<unsigned char>(text[length / 2]) * 256u + static_cast<unsigned char>(text.back());
    }
}

std::size_t RecentTexts::placeOf(const Ends& ends) noexcept {
    std::uint64_t mixed = (ends.head + ends.length) * 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ (mixed >> 29) ^ ends.tail) * 0xBF58476D1CE4E5B9u;
    return static_cast<std::size_t>(mixed >> 32) % placesPerColumn;
}

bool RecentTexts::holds(const Place& place, const Ends& ends, std::string_view text) noexcept {
    return place.ends.head == ends.head && place.ends.tail == ends.tail && place.ends.length == ends.length &&
           (ends.length <= 16 || std::memcmp(place.text.c_str(), text.data(), ends.length) == 0);
}

inline RecentTexts::Column* RecentTexts::columnToWatch(std::size_t number) {
    if (number >= watchedColumns) return nullptr;
    Column& column = m_columns[number];
    if (column.rest > 0) {
        --column.rest;
        return nullptr;
    }
    if (!column.places) column.places = std::make_unique<Place[]>(placesPerColumn);
    return &column;
}

void RecentTexts::append(FieldList& fields, std::string_view text) {
    if (text.empty()) return fields.push_back({});
    Column* const column = columnToWatch(fields.size());
    if (!column) return fields.push_back(m_memory.makeText(text));
    const Ends ends(text);
    Place& place = column->places[placeOf(ends)];
    if (holds(place, ends, text)) {
        column->patience = std::min(column->patience + worthOfHit, fullPatience);
    } else {
        keep(text, ends, place);
        if (--column->patience == 0) rest(*column);
    }
    fields.push_back(place.text);
}

void RecentTexts::keep(std::string_view text, const Ends& ends, Place& place) {
    place.text = m_memory.makeText(text);
    place.ends = ends;
}

void RecentTexts::rest(Column& column) noexcept {
    column.rest = longRest;
    column.patience = fullPatience / 2;
}
