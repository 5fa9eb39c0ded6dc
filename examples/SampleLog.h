// The log that the examples work on: four takes on two reels.
#pragma once

#include "record/kesta.h"

inline Zr::Ptr<kesta> sampleLog() {
    const std::vector<DBFieldDesc> columns = {{"Name", DBFieldTypes::eText},
                                              {"Reel", DBFieldTypes::eText},
                                              {"Start time", DBFieldTypes::eTimecode},
                                              {"Notes", DBFieldTypes::eText}};
    const char* const takes[][4] = {{"12-1", "LW001", "01:00:00:00", "Flare at the head"},
                                    {"12-2", "LW001", "01:00:42:15", "Circle take"},
                                    {"14-1", "LW002", "02:00:00:00", "MOS"},
                                    {"14-2", "LW002", "02:01:24:00", "circle, paint out boom"}};
    Zr::Ptr<kesta> log(new kesta(columns));
    log->add_param("Title", "Low Water");
    for (const auto& take : takes) {
        const unsigned row = log->add_records(1);
        for (unsigned field = 0; field < columns.size(); ++field) log->set_field(row, field, take[field]);
    }
    return log;
}
