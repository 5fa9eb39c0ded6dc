// The one macro of the project: marks what the shared libraries export. Everything else is hidden.
#pragma once

#define KESTA_API __attribute__((visibility("default")))
