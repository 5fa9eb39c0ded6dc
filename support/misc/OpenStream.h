// Opening files that are read or written from the beginning to the end.
//
// Thread-safety: any thread.
#pragma once

#include "support/SystemFile.h"

/// Opens a regular file, a pipe or a terminal without waiting for the other end of a pipe; from then on
/// reading and writing wait as usual. Devices that may have no end are refused. When it fails, the result
/// holds no file and errno says why.
SystemFile openStream(const LibraryString& path, int access) noexcept;
