// Files that stand in for others until they are moved over them.
//
// Thread-safety: any thread.
#pragma once

#include "support/Export.h"
#include "support/LightweightString.h"

/// Makes an empty file that stands in for `original` under another name until it is moved over it: with its
/// owner and permissions, and writable by its owner, in the place of whatever bears the name, which is never
/// followed as a link. Returns false, with errno set and that name as it was, when it cannot be made.
KESTA_API bool makeStandIn(const LightweightString<wchar_t>& name,
                           const LightweightString<wchar_t>& original);
