/* The parsed text of a description and the changes made to it before compiling. */
#pragma once

#include "xpi_format.h"

#include <toml++/toml.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace xpifile {

/* A child of a TOML table. The parser keeps tables by alphabet; the order of the text is the one that counts.
 */
struct Entry {
    std::string_view key;
    const toml::node* node;
};

/* The children of a table in the order of the text, those that an override added behind them. */
std::vector<Entry> InTextOrder(const toml::table& table);

/* 1-based line of a node; 0 for one that an override brought. */
int LineOf(const toml::node& node);

/* 1-based line of the first character that TOML does not know at its place and the parser is not sure of: a
   control character, or one beyond ASCII outside strings and comments. 0 when there is none; a byte order
   mark at the start is none. */
int LineOfStrayCharacter(std::string_view text);

/* Applies one change. False with an error added when path or value do not read. */
bool ApplyOverride(toml::table& root, const XpiOverride& change, std::vector<XpiError>& errors);

} // namespace xpifile
