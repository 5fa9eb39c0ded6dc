// Finding records: by example, by criteria, by value.
#include "examples/SampleLog.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    const unsigned notes = log->get_fieldnum("Notes");

    // By example: what a query record's fields hold is what the columns must contain, in either case.
    const Zr::Ptr<dbrecord> example = log->make_dummy_record();
    example->set_field(static_cast<int>(notes), "circle", true);
    log->set_query(example.get());
    if (log->tag_matching_records(0) != 2) return 1;

    // By criteria: one entry for each column.
    std::vector<TextSearch::Criteria> criteria(log->get_num_fields());
    criteria[notes].add({"circle", TextSearch::eBeginsWith});
    criteria[notes].add({"boom", TextSearch::eEndsWith});
    log->setQuery(criteria);
    if (log->match_record(1) != 0 || log->match_record(3) != 1) return 1;

    // By value: the first row that holds exactly this.
    return log->findFirst("Reel", "LW002", 0) == 2 && log->findFirst("Reel", "LW009", 0) == -1 ? 0 : 1;
}
