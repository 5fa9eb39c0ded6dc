// Several threads reading a database and its views while nobody writes.
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "tests/view/Views.h"

namespace {

std::size_t readAll(const KSTViewRep& view, iKST& source) {
    std::size_t sum = 0;
    for (unsigned row = 0; row < source.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = source.get_record(row);
        int number = 0;
        sum = sum * 31 + source.getField(row, 0).length() + static_cast<std::size_t>(source.get_tag(row));
        sum += source.in_field(row, 0, number) ? static_cast<std::size_t>(number) : 7;
        sum += static_cast<std::size_t>(source.baseIndex(static_cast<int>(row)));
        if (row % 50 == 0) sum += static_cast<std::size_t>(view.find(record.get()));
    }
    return sum + source.get_num_fields() + std::string(source.get_fieldname(0)).size();
}

TEST(ViewThreads, ReadTheSameWhileNobodyWrites) {
    const auto database = TestSupport::makeTextDatabase({"Name"});
    database->add_records(1000);
    for (unsigned row = 0; row < 1000; ++row) database->set_field(row, 0, static_cast<int>(row));
    const KSTView base = viewOfAll(*database);
    const KSTView top = viewOfAll(*database, base);
    for (unsigned row = 0; row < 1000; row += 9) top->set_tag(row, 1);
    // Scattered deletions leave notes in the row indices, through which the readers look.
    for (unsigned row = 0; row < 900; row += 20) database->delete_records(row, 1);

    const std::size_t expected[] = {readAll(*base, *database), readAll(*base, *base), readAll(*top, *top)};
    std::vector<std::thread> readers;
    std::vector<int> agreed(4);
    for (int& same : agreed) {
        readers.emplace_back([&] {
            same = expected[0] == readAll(*base, *database) && expected[1] == readAll(*base, *base) &&
                   expected[2] == readAll(*top, *top);
        });
    }
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(std::vector<int>(4, 1), agreed);
}

}  // namespace
