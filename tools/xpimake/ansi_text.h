/* Text forms: the ANSI code page 1252, TOML strings, hexadecimal digits, language names. */
#pragma once

#include "xpi_layout.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xpifile {

/* UTF-8 to code page 1252; nothing when a character is not in it. The five bytes that the page leaves free
   stand for the control characters of the same number, so every byte can be written. */
std::optional<std::string> ToAnsi(std::string_view utf8);

/* One line of TOML string with its quotation marks for bytes of code page 1252. */
std::string QuoteAnsi(std::string_view bytes);

/* Two digits a byte; blanks between bytes are taken. Nothing on any other character or an odd digit. */
std::optional<std::vector<u8>> FromHex(std::string_view text);
std::string ToHex(std::span<const u8> bytes);

/* Primary language id of a key of [strings]: a two-letter code, or the number itself. Below 0 for neither. */
int LanguageId(std::string_view key);

/* The shortest key for an id: its two-letter code, else its number. */
std::string LanguageKey(unsigned id);

} // namespace xpifile
