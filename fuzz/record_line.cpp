// Any bytes as record lines: reading agrees with the slow model, and what has been written and read once does
// not change any more.
#include <algorithm>

#include "fuzz/Fuzz.h"
#include "record/dbrecord.h"
#include "support/TextFile.h"
#include "tests/record/LineModel.h"

namespace {

LineModel::Line read(const std::string& line) {
    TextFile file;
    file.appendLine(Fuzz::Text(line));
    dbrecord record(3);
    LineModel::Line result;
    result.count = record.read(file);
    Fuzz::promise(file.cursor() == 1);
    for (const auto& field : record.fields()) result.fields.push_back(Fuzz::str(field));
    return result;
}

std::string write(const LineModel::Fields& fields) {
    dbrecord record(static_cast<unsigned short>(fields.size()));
    for (unsigned short i = 0; i < fields.size(); ++i) record.setField(i, Fuzz::Text(fields[i]));
    TextFile file;
    Fuzz::promise(record.write(file) && file.size() == 1 && !record.get_changed());
    return Fuzz::str(file[0]);
}

// A field of the greatest length is cut before its closing quote is seen, which leaves a field too many.
bool isCut(const LineModel::Fields& fields) {
    return std::any_of(fields.begin(), fields.end(), [](const auto& field) { return field.size() > 4000; });
}

void roundTrip(const std::string& line) {
    const LineModel::Line first = read(line);
    const LineModel::Line expected = LineModel::readLine(line);
    Fuzz::promise(first.fields == expected.fields && first.count == expected.count);
    Fuzz::promise(static_cast<std::size_t>(first.count) <= line.size());

    // Carriage returns go with the first writing. A backslash that stood before one may then stand before an
    // n, so it takes a second reading until all is as it will be.
    const std::string once = write(first.fields);
    Fuzz::promise(once == LineModel::writeLine(first.fields));
    const LineModel::Line second = read(once);
    if (isCut(first.fields) || isCut(second.fields)) return;
    Fuzz::promise(second.fields.size() == first.fields.size());
    Fuzz::promise(read(write(second.fields)).fields == second.fields);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    while (!input.empty()) roundTrip(input.line());
    return 0;
}
