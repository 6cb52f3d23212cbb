/* The state of one compilation and its steps. Rows and the body are in compile.cpp, the other sections of the
   file in compile_sections.cpp. */
#pragma once

#include "toml_source.h"
#include "xpi_layout.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xpifile {

using Bytes = std::vector<u8>;

/* Stores a number little-endian at a place, or behind the end. */
void PutNumber(u8* out, std::size_t width, u64 value);
void Append(Bytes& out, std::size_t width, u64 value);

/* Where a piece of [color_data] lies. */
struct SliceRange {
    std::size_t offset, length;
};

struct Compiler {
    toml::table root;
    XpiCompiled result;
    bool image = false;
    std::map<std::string_view, SliceRange> slices;
    std::map<std::string_view, std::map<std::string_view, i64>> listStarts; /* table, list -> first row */
    Bytes body;
    Bytes sections[16]; /* by Section; BODY is kept apart */

    void Error(const toml::node* node, const std::string& field, const std::string& message)
    {
        result.errors.push_back({node ? LineOf(*node) : 0, field, message});
    }

    std::optional<i64> Integer(const toml::node& node, const std::string& path, i64 low, i64 high);
    std::optional<std::string> Ansi(const toml::node& node, const std::string& path, bool nulAllowed = false);
    std::optional<i64> Symbol(const toml::node& node, const std::string& path, const Field& field);
    void Papers(const toml::node& node, const std::string& path, u8* out);
    void Value(const toml::node& node, const std::string& path, const Field& field, u8* out);
    void Row(const toml::node& node, const std::string& path, const Table& table, bool closing, Bytes& out);
    const toml::array* Rows(const toml::table& section, const std::string& path);
    void RowTable(const toml::table& section, const Table& table, Bytes& out);
    void ListTable(const toml::table& section, const Table& table, Bytes& out);
    void PairTable(const toml::table& section, const Table& table, Bytes& out);
    void ModelTable(const toml::node& node, const Table& table, Bytes& out);
    void PlaceLists();
    void Strings();
    void Commands();
    void ColorData();
    void Fonts();
    void FontBlock(const toml::node& node, const std::string& path, Bytes& out);
    void Bitmaps();
    void Model();
    void CheckSections();
    void Assemble();
    void Run();
};

} // namespace xpifile
