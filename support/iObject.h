// The root of every counted object: one count, however many roads of inheritance lead to it.
#pragma once

#include "support/LibraryObject.h"
#include "support/Ptr.h"

/// Hold derived objects through Zr::Ptr; the last Ptr destroys them.
class KESTA_API iObject : public virtual Zr::InternalRefCount, public virtual iVirtual, public LibraryObject {
 public:
    iObject() = default;
    iObject(const iObject&) = default;
    iObject& operator=(const iObject&) = default;
    ~iObject() override;
};
