// CopiedDatabase: a database that exists for the views on it, which share its ownership.
#pragma once

#include "record/kesta.h"

class CopiedDatabase final : public kesta {
 public:
    explicit CopiedDatabase(const kesta& original) : kesta(original, 1) {}
};
