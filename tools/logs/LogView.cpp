#include "tools/logs/LogView.h"

#include <algorithm>

#include "record/dbrecord.h"
#include "tools/logs/LogForm.h"

namespace {

// A query holds one text for each column. Returns the texts that it had no room for.
std::vector<ColumnText> keepMatchesOfOneQuery(KSTViewRep& view, const std::vector<ColumnText>& texts) {
    const Zr::Ptr<dbrecord> query = view.make_dummy_record();
    std::vector<ColumnText> further;
    for (const ColumnText& sought : texts) {
        const auto field = static_cast<unsigned short>(sought.column);
        if (query->getField(field).empty()) {
            query->setField(field, libraryText(sought.text));
        } else {
            further.push_back(sought);
        }
    }
    view.set_query(query.get());
    view.tagMatches(0);
    view.removeNonTagged();
    return further;
}

}  // namespace

KSTView viewOf(kesta& log) {
    // Without a choice of columns: one that names them all cannot name a column with a comma.
    KSTView view(new KSTViewRep(&log, ""));
    view->setupViewTagsFromKestaTagField();
    return view;
}

void keepRows(KSTViewRep& view, const std::vector<RowRange>& ranges) {
    // From the end, so that the numbers of the rows still to go stay right.
    auto end = view.get_num_records();
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        view.remove(static_cast<int>(range->last + 1), static_cast<int>(end - range->last - 1));
        end = range->first;
    }
    view.remove(0, static_cast<int>(end));
}

void keepMatches(KSTViewRep& view, std::vector<ColumnText> texts) {
    while (!texts.empty()) texts = keepMatchesOfOneQuery(view, texts);
}

void sortRows(KSTViewRep& view, std::vector<int> columns) {
    view.set_sortfields(columns.data());
    view.sort(1, 0);
}
