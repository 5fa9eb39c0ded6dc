// The revision of the file format.
#pragma once

/// What the first parameter of a database says, and what a load expects.
constexpr int currentRevision = 1;
