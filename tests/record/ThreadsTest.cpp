// Several threads reading a database while nobody writes: the first look-ups fill its caches.
#include <gtest/gtest.h>
#include <thread>

#include "support/Cookie.h"
#include "support/StringFunctions.h"
#include "tests/TestSupport.h"

namespace {

using namespace TestSupport;

TEST(RecordThreads, FirstLookUpsMayComeFromAllAtOnce) {
    kesta database(textColumns({"Cookie", "Name", "Reel"}));
    database.add_records(500);
    for (unsigned row = 0; row < 500; ++row) {
        database.set_field(row, 0, static_cast<int>(row));
        database.set_field(row, 2, static_cast<int>(row % 7));
    }
    database.set_fieldname(1, "Scene");  // both caches are to be filled again

    const auto look = [&database] {
        const unsigned reel = database.get_fieldnum("REEL");
        unsigned sum = reel + database.get_fieldnum("scene");
        for (int id = 0; id < 500; id += 3) {
            const LightweightString<char> name = Zr::StringFromInteger(id);
            const unsigned row = database.getRowIndexByID(Cookie(name.c_str(), false));
            const Zr::Ptr<dbrecord> copy(new dbrecord(*database.get_record(row)));  // shares the texts
            sum += row + copy->getField(static_cast<unsigned short>(reel)).length();
        }
        Lines header;
        database.save_column_header(header, false);
        return sum + header.size();
    };
    std::vector<unsigned> answers(4);
    std::vector<std::thread> readers;
    for (unsigned& answer : answers) readers.emplace_back([&answer, look] { answer = look(); });
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(answers, std::vector<unsigned>(4, look()));
}

}  // namespace
