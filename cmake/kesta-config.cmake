# The CMake package kesta: target kesta::kesta, with the support libraries kesta::misc, kesta::zr and kesta::OS.
include("${CMAKE_CURRENT_LIST_DIR}/kesta-targets.cmake")
