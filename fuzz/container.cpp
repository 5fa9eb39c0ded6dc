// Container files. Any bytes as one: its reader answers what the slow model reads. Any items and attributes:
// what was written is read again. The first byte says which.
#include <cctype>
#include <cstdlib>
#include <limits>
#include <set>

#include "container/ZRContainerFile.h"
#include "fuzz/Fuzz.h"
#include "tests/record/LineModel.h"

namespace {

using Reader = ZRContainerFile::Reader;

constexpr const char* fileName = "container";
constexpr unsigned noColumn = static_cast<unsigned>(-1);

unsigned columnOf(const LineModel::Fields& names, const std::string& wanted) {
    for (unsigned i = 0; i < names.size(); ++i) {
        if (LineModel::folded(names[i]) == wanted) return i;
    }
    return noColumn;
}

std::string attribute(const LineModel::Database& model, const std::string& wanted) {
    for (const auto& [name, value] : model.params) {
        if (LineModel::folded(name) == LineModel::folded(wanted)) return value;
    }
    return {};
}

void checkAttributes(const Reader& reader, const LineModel::Database& model) {
    for (const auto& [name, value] : model.params) {
        const Fuzz::Text key(name.c_str());
        const std::string expected = reader.valid() ? attribute(model, name) : std::string();
        Fuzz::promise(reader.getAttrib(key).view() == expected);
        const int number =
            expected.empty() ? -7 : static_cast<int>(std::strtol(expected.c_str(), nullptr, 10));
        Fuzz::promise(reader.getAttrib(key, -7) == number);
    }
    Fuzz::promise(reader.getName() == reader.getAttrib("NAME"));
    Fuzz::promise(toUTF8(reader.getNameW()) == reader.getName());
    Fuzz::promise(!reader.isPermanent() || !reader.getAttrib("Permanent").empty());
}

void checkItems(const Reader& reader, const LineModel::Database& model) {
    const unsigned column = columnOf(model.names, "cookie");
    Fuzz::promise(reader.getNumItems() == model.rows.size());
    Fuzz::promise(reader.getItemAttribIndex("cookie") == static_cast<int>(column));
    std::set<Cookie> contents;
    for (unsigned row = 0; row < model.rows.size(); ++row) {
        const Reader::Item item = reader.getItem(row);
        Fuzz::promise(item.getCookie() == Cookie(model.rows[row][column].c_str(), false));
        contents.insert(item.getCookie());
        for (unsigned field = 0; field < model.names.size(); ++field) {
            const std::string& text = model.rows[row][field];
            Fuzz::promise(item.getAttrib(field).view() == text);
            const int number = static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
            Fuzz::promise(item.getAttrib(field, -7) == number);
        }
        Fuzz::promise(item.getAttrib(static_cast<unsigned>(model.names.size()), 1.5) == 1.5);
    }
    const CookieSet set = reader.getContents();
    Fuzz::promise(set.size() == contents.size());
    for (const Cookie& each : contents) {
        Fuzz::promise(set.contains(each) && (each.isNull() || reader.contains(each)));
    }
}

/// Opens the file and compares it with the model's reading of its bytes.
Reader open() {
    const std::string content = Fuzz::readFile(Fuzz::folder() / fileName);
    const Reader reader(Fuzz::folder().wide(fileName), false);
    const auto model = LineModel::Loader(content).load(std::numeric_limits<int>::max(), true);
    Fuzz::promise(reader.valid() == (model.valid && columnOf(model.names, "cookie") != noColumn));
    checkAttributes(reader, model);
    if (reader.valid()) {
        checkItems(reader, model);
    } else {
        Fuzz::promise(reader.getContents().empty() && reader.getItem(0).getCookie().isNull());
    }

    const Reader header(Fuzz::folder().wide(fileName), true);
    Fuzz::promise(header.valid() == reader.valid() && header.getNumItems() == 0);
    checkAttributes(header, model);
    return reader;
}

void readAny(Fuzz::Input& input) {
    Fuzz::writeFile(Fuzz::folder() / fileName, input.rest());
    open();
}

/// A text that the file's header keeps as it is.
std::string plain(const std::string& text) {
    std::string kept;
    for (const char c : text) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) kept += c;
    }
    return kept;
}

Cookie identifier(Fuzz::Input& input) {
    Zr::UUID uuid;
    uuid.bytes[0] = input.byte();
    return Cookie(uuid, static_cast<CookieType>(input.byte()), input.byte());
}

void fill(ZRContainerFile::Writer& writer, LineModel::Database& expected, Fuzz::Input& input) {
    while (!input.empty()) {
        if (input.below(4) == 0) {
            const std::string key = plain(input.text());
            const std::string value = plain(input.text());
            writer.setAttrib(key.c_str(), value.c_str());
            expected.params.insert(expected.params.begin(), {key, value});  // the last one holds
            continue;
        }
        const Cookie cookie = identifier(input);
        dbrecord* const item = writer.addItem(cookie);
        Fuzz::promise((item == nullptr) == (cookie.type() == 'I'));
        if (!item) continue;
        const Fuzz::Text note(input.text());
        item->setField(1, note);
        expected.rows.push_back({Fuzz::str(cookie.asString(true)), Fuzz::str(note)});
    }
}

void writeAndRead(Fuzz::Input& input) {
    constexpr int withCookie = 0;
    const DBFieldDesc columns[] = {{input.below(8) == withCookie ? "Notes" : "Cookie", DBFieldTypes::eTextS},
                                   {"Notes", DBFieldTypes::eText},
                                   {}};
    ZRContainerFile::Writer writer(columns);
    writer.setName("Low Water");
    LineModel::Database expected;
    fill(writer, expected, input);

    std::filesystem::remove(Fuzz::folder() / fileName);
    const auto file = Fuzz::folder().wide(fileName);
    writer.save(file);
    const std::string content = Fuzz::readFile(Fuzz::folder() / fileName);
    writer.save(file);  // over the file
    Fuzz::promise(Fuzz::readFile(Fuzz::folder() / fileName) == content);

    const Reader reader = open();
    if (!reader.valid()) return;
    Fuzz::promise(reader.getNumItems() == expected.rows.size());
    for (unsigned i = 0; i < expected.rows.size(); ++i) {
        const auto fields = LineModel::readLine(LineModel::writeLine(expected.rows[i])).fields;
        Fuzz::promise(reader.getItem(i).getCookie() == Cookie(expected.rows[i][0].c_str(), true));
        Fuzz::promise(reader.getItem(i).getAttrib(1).view() == fields[1]);
    }
    for (const auto& [key, value] : expected.params) {
        if (!key.empty()) Fuzz::promise(reader.getAttrib(key.c_str()).view() == attribute(expected, key));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr void (*forms[])(Fuzz::Input&) = {readAny, writeAndRead};
    Fuzz::Input input(data, size);
    forms[input.below(std::size(forms))](input);
    return 0;
}
