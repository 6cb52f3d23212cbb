/* The sections behind the body: texts, commands, fonts, bitmaps, colour data. */
#include "ansi_text.h"
#include "compiler.h"

#include <algorithm>

namespace xpifile {

/* Texts: the first language gives the ids and answers for every language without texts of its own. */
void Compiler::Strings()
{
    i64 baseRows = LANGUAGE_ROWS;
    struct Language {
        int id;
        const toml::table* texts;
        std::string path;
    };
    std::vector<Language> languages;
    const toml::table* section = root["strings"].as_table();
    for (const Entry& entry : section ? InTextOrder(*section) : std::vector<Entry>()) {
        std::string path = "strings." + std::string(entry.key);
        if (entry.key == "base_rows") {
            baseRows = Integer(*entry.node, path, 1, LANGUAGE_ROWS).value_or(baseRows);
            continue;
        }
        int id = LanguageId(entry.key);
        bool twice =
            std::any_of(languages.begin(), languages.end(), [&](const Language& l) { return l.id == id; });
        if (id < 0 || twice || !entry.node->is_table()) {
            Error(entry.node, path,
                  "A table of texts named by a language code or primary language id is expected.");
            continue;
        }
        languages.push_back({id, entry.node->as_table(), path});
    }
    std::vector<std::string_view> keys;
    for (const Entry& text : languages.empty() ? std::vector<Entry>() : InTextOrder(*languages[0].texts)) {
        keys.push_back(text.key);
        result.strings[std::string(text.key)] = static_cast<u16>(std::min<std::size_t>(keys.size(), 32767));
    }
    Bytes& bytes = sections[STRING_BYTES];
    Bytes& offsets = sections[STRING_OFFSETS];
    Bytes bases(static_cast<std::size_t>(baseRows) * 2);
    std::map<std::string, std::size_t> pool = {{"", 0}}; /* equal texts share their bytes */
    bytes.push_back(0);
    Append(offsets, 2, 0);
    for (std::size_t i = 0; i < languages.size(); i++) {
        const Language& language = languages[i];
        if (language.id >= baseRows) {
            Error(language.texts, language.path, "The language lies behind the last base row.");
        } else {
            PutNumber(bases.data() + language.id * 2, 2, i * keys.size());
        }
        for (const Entry& text : InTextOrder(*language.texts)) {
            if (!result.strings.contains(std::string(text.key))) {
                Error(text.node, language.path + "." + std::string(text.key),
                      "The first language has no text of this key.");
            }
        }
        for (std::string_view key : keys) {
            const toml::node* node = language.texts->get(key);
            node = node ? node : languages[0].texts->get(key);
            std::string text = Ansi(*node, language.path + "." + std::string(key)).value_or("");
            auto [place, fresh] = pool.try_emplace(text, bytes.size());
            if (fresh) {
                bytes.insert(bytes.end(), text.begin(), text.end());
                bytes.push_back(0);
            }
            Append(offsets, 2, place->second);
        }
    }
    if (bytes.size() > 65535 || offsets.size() / 2 > 65535 || keys.size() > 32767) {
        Error(section, "strings",
              "The texts take more than the 65535 bytes or rows that an offset can tell.");
    }
    sections[STRING_BASES] = bases;
}

void Compiler::Commands()
{
    Bytes& bytes = sections[COMMAND_BYTES];
    const toml::node* node = root.get("commands");
    const toml::table* section = node ? node->as_table() : nullptr;
    bytes.push_back(0);
    Append(sections[COMMAND_OFFSETS], 2, 0); /* id 0 is no command */
    std::size_t id = 0;
    for (const Entry& entry : section ? InTextOrder(*section) : std::vector<Entry>()) {
        result.commands[std::string(entry.key)] = static_cast<u16>(++id);
        Append(sections[COMMAND_OFFSETS], 2, bytes.size());
        if (auto text = Ansi(*entry.node, "commands." + std::string(entry.key))) {
            bytes.insert(bytes.end(), text->begin(), text->end());
            bytes.push_back(0);
        }
    }
    if (bytes.size() > 65535 || id > 65535) {
        Error(node, "commands",
              "The commands take more than the 65535 bytes or rows that an offset can tell.");
    }
}

void Compiler::ColorData()
{
    const toml::table* section = root["color_data"].as_table();
    for (const Entry& entry : section ? InTextOrder(*section) : std::vector<Entry>()) {
        if (auto piece = Ansi(*entry.node, "color_data." + std::string(entry.key), true)) {
            slices[entry.key] = {sections[COLOR_DATA].size(), piece->size()};
            sections[COLOR_DATA].insert(sections[COLOR_DATA].end(), piece->begin(), piece->end());
        }
    }
}

/* A font is { bytes = "hex" }, or { face, charset, size, fill }, or without a face { size, fill }. */
void Compiler::FontBlock(const toml::node& node, const std::string& path, Bytes& out)
{
    const toml::table* font = node.as_table();
    if (!font) {
        Error(&node, path, "A row { face = ..., charset = ..., size = ... } is expected here.");
        return;
    }
    for (const Entry& entry : InTextOrder(*font)) {
        constexpr std::string_view KEYS[] = {"face", "charset", "size", "fill", "bytes"};
        if (std::find(std::begin(KEYS), std::end(KEYS), entry.key) == std::end(KEYS)) {
            Error(entry.node, path + "." + std::string(entry.key), "A font has no such field.");
        }
    }
    if (const toml::node* bytes = font->get("bytes")) {
        std::optional<Bytes> block = bytes->is_string() ? FromHex(bytes->as_string()->get()) : std::nullopt;
        if (!block || font->size() != 1) {
            Error(bytes, path + ".bytes",
                  "Hexadecimal digits two by two are expected here, and no other field.");
        } else {
            out.insert(out.end(), block->begin(), block->end());
        }
        return;
    }
    auto number = [&](const char* key, i64 low, i64 high, i64 missing) {
        const toml::node* value = font->get(key);
        return value ? Integer(*value, path + "." + key, low, high).value_or(missing) : missing;
    };
    const toml::node* face = font->get("face");
    std::size_t least = face ? FONT_NAMED_BYTES : 0;
    auto size =
        static_cast<std::size_t>(number("size", static_cast<i64>(least), 0x1000000, static_cast<i64>(least)));
    Bytes block(size, static_cast<u8>(number("fill", 0, 255, 0)));
    if (face) {
        std::string name = Ansi(*face, path + ".face").value_or("");
        if (name.size() >= FONT_FACE_BYTES) {
            Error(face, path + ".face", "The name of a face has room for 31 characters.");
        } else {
            std::fill_n(block.begin(), FONT_FACE_BYTES, u8(0));
            std::copy(name.begin(), name.end(), block.begin());
        }
        block[FONT_FACE_BYTES] = static_cast<u8>(number("charset", 0, 255, 0));
    } else if (const toml::node* charset = font->get("charset")) {
        Error(charset, path + ".charset", "A character set needs a face.");
    }
    out.insert(out.end(), block.begin(), block.end());
}

void Compiler::Fonts()
{
    const toml::table* section = root["fonts"].as_table();
    const toml::array* rows = section ? Rows(*section, "fonts") : nullptr;
    Bytes& bytes = sections[FONT_BYTES];
    for (std::size_t i = 0; rows && i < rows->size(); i++) {
        Append(sections[FONT_OFFSETS], 4, bytes.size());
        FontBlock(*rows->get(i), "fonts.rows[" + std::to_string(i) + "]", bytes);
    }
    Append(sections[FONT_OFFSETS], 4, bytes.size());
}

void Compiler::Bitmaps()
{
    const toml::table* section = root["bitmaps"].as_table();
    const toml::array* rows = section ? Rows(*section, "bitmaps") : nullptr;
    for (std::size_t i = 0; rows && i < rows->size(); i++) {
        const toml::table* row = rows->get(i)->as_table();
        const toml::node* bytes = row && row->size() == 1 ? row->get("bytes") : nullptr;
        std::optional<Bytes> block =
            bytes && bytes->is_string() ? FromHex(bytes->as_string()->get()) : std::nullopt;
        Append(sections[BITMAP_OFFSETS], 4, sections[BITMAP_BYTES].size());
        if (!block) {
            Error(rows->get(i), "bitmaps.rows[" + std::to_string(i) + "]",
                  "A bitmap is { bytes = \"...\" }, a whole BMP file in hexadecimal digits.");
            continue;
        }
        sections[BITMAP_BYTES].insert(sections[BITMAP_BYTES].end(), block->begin(), block->end());
    }
}

} // namespace xpifile
