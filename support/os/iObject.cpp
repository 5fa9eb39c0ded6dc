// iObject: its destructor, emitted once.
#include "support/iObject.h"

iVirtual::~iVirtual() = default;
iObject::~iObject() = default;
