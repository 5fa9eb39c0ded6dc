// Text as a terminal may show it: harmless, and measured in character cells.
//
// Thread-safety: pure functions. Widths of characters beyond ASCII need a UTF-8 locale; without one every
// character counts as one cell.
#pragma once

#include <string>
#include <string_view>

/// Asks the C library for the character tables that widths need, whatever the user's locale. For the
/// program's start.
void useUnicodeWidths() noexcept;

/// The text with everything that could steer a terminal made visible: control characters and escape
/// sequences as \n, \t, \x1b ..., controls beyond ASCII (text direction among them) as \u202e ..., bytes that
/// are no UTF-8 as \xff.
std::string harmless(std::string_view text);

/// "1 record", "2 records".
std::string counted(std::size_t count, const char* what);

/// The cells that a harmless text takes: wide characters two, combining ones none.
std::size_t displayWidth(std::string_view harmlessText);

/// As much from the beginning of a harmless text as fits into `cells`, never cut inside a character.
std::string_view fitting(std::string_view harmlessText, std::size_t cells);

/// As much of a text's beginning as fits into `bytes`, never cut inside a UTF-8 character.
std::string_view cutTo(std::string_view text, std::size_t bytes) noexcept;
