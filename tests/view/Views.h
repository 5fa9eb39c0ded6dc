// What the tests of views share.
#pragma once

#include "tests/TestSupport.h"
#include "view/KSTView.h"

/// A view that shows all rows of the database, or of the view that it is chained on.
inline KSTView viewOfAll(kesta& database, const KSTView& base = KSTView()) {
    KSTView view(new KSTViewRep(&database));
    view->baseView(base.rep());
    view->displayAllRecords();
    return view;
}
