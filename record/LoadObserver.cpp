// What an observer of a load does unless it says otherwise: nothing.
#include "record/LoadObserver.h"

LoadObserver::~LoadObserver() = default;

void LoadObserver::lost(const LoadEvent&) {}

void LoadObserver::parameterRead(unsigned, const Zr::AttribValuePair&) {}

void LoadObserver::columnsRead(unsigned, const std::vector<DBFieldDesc>&) {}

void LoadObserver::recordRead(unsigned, std::string_view, const dbrecord&) {}
