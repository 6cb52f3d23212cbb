/* The compiler: parsed text to the body of a description file, driven by the layout table. */
#include "ansi_text.h"
#include "compiler.h"

#include <algorithm>

namespace xpifile {

void PutNumber(u8* out, std::size_t width, u64 value)
{
    for (std::size_t i = 0; i < width; i++) {
        out[i] = static_cast<u8>(value >> (8 * i));
    }
}

void Append(Bytes& out, std::size_t width, u64 value)
{
    out.resize(out.size() + width);
    PutNumber(out.data() + out.size() - width, width, value);
}

std::optional<i64> Compiler::Integer(const toml::node& node, const std::string& path, i64 low, i64 high)
{
    std::optional<i64> value;
    if (const toml::value<i64>* number = node.as_integer()) {
        value = number->get();
    } else if (const toml::value<bool>* flag = node.as_boolean()) {
        value = flag->get() ? 1 : 0;
    } else {
        Error(&node, path, "A number is expected here.");
        return std::nullopt;
    }
    if (*value < low || *value > high) {
        Error(&node, path,
              "The number must lie in " + std::to_string(low) + " to " + std::to_string(high) + ".");
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> Compiler::Ansi(const toml::node& node, const std::string& path, bool nulAllowed)
{
    const toml::value<std::string>* text = node.as_string();
    if (!text) {
        Error(&node, path, "A text in quotation marks is expected here.");
        return std::nullopt;
    }
    std::optional<std::string> bytes = ToAnsi(text->get());
    if (!bytes) {
        Error(&node, path, "The text has a character that code page 1252 lacks.");
    } else if (!nulAllowed && bytes->find('\0') != std::string::npos) {
        Error(&node, path, "The text holds a NUL, which would end it.");
        return std::nullopt;
    }
    return bytes;
}

/* A key that stands for a number: of a text, of a command, of a list. */
std::optional<i64> Compiler::Symbol(const toml::node& node, const std::string& path, const Field& field)
{
    const std::string& key = node.as_string()->get();
    if (field.kind == Kind::Name) {
        auto found = result.strings.find(key);
        if (found == result.strings.end()) {
            Error(&node, path, "No text has the key \"" + key + "\" in the first language.");
            return std::nullopt;
        }
        return found->second;
    }
    if (field.kind == Kind::Command || field.kind == Kind::Number) {
        auto found = result.commands.find(key);
        if (found == result.commands.end()) {
            Error(&node, path, "[commands] has no key \"" + key + "\".");
            return std::nullopt;
        }
        return found->second;
    }
    auto lists = listStarts.find(field.list);
    if (lists == listStarts.end() || !lists->second.contains(key)) {
        Error(&node, path, std::string("[") + field.list + "] has no list \"" + key + "\".");
        return std::nullopt;
    }
    i64 start = lists->second.find(key)->second;
    if (start > 32767) {
        Error(&node, path, "The list begins behind row 32767 of its table, which the field cannot tell.");
        return std::nullopt;
    }
    return start;
}

void Compiler::Papers(const toml::node& node, const std::string& path, u8* out)
{
    const toml::array* codes = node.as_array();
    if (!codes) {
        Error(&node, path, "A list of paper codes is expected here.");
        return;
    }
    for (std::size_t i = 0; i < codes->size(); i++) {
        if (auto code = Integer(*codes->get(i), path + "[" + std::to_string(i) + "]", 0, 255)) {
            out[*code / 8] = static_cast<u8>(out[*code / 8] | 0x80 >> *code % 8);
        }
    }
}

/* Stores the value of one field at its place in the row. */
void Compiler::Value(const toml::node& node, const std::string& path, const Field& field, u8* out)
{
    if (field.kind == Kind::Papers) {
        Papers(node, path, out);
        return;
    }
    if (field.kind == Kind::Text) {
        std::optional<std::string> text = Ansi(node, path);
        if (text && text->size() >= field.width) {
            Error(&node, path, "The text has room for " + std::to_string(field.width - 1) + " characters.");
        } else if (text) {
            std::copy(text->begin(), text->end(), out);
        }
        return;
    }
    if (field.kind == Kind::Slice) {
        auto found = node.is_string() ? slices.find(node.as_string()->get()) : slices.end();
        if (found == slices.end()) {
            Error(&node, path, "The key of a piece of [color_data] is expected here.");
        } else if (found->second.offset > 65535 || found->second.length > 65535) {
            Error(&node, path, "The piece lies beyond the first 65535 bytes, which the row cannot tell.");
        } else {
            PutNumber(out, 2, found->second.offset);
            PutNumber(out + 2, 2, found->second.length);
        }
        return;
    }
    i64 top = (i64(1) << (8 * field.width)) - 1;
    i64 bottom = -(top / 2) - 1;
    std::optional<i64> number;
    if (node.is_string() && !field.names.empty()) {
        const std::string& key = node.as_string()->get();
        std::string known;
        for (const EnumName& name : field.names) {
            if (key == name.name) {
                number = name.value;
            }
            known += known.empty() ? name.name : std::string(", ") + name.name;
        }
        if (!number) {
            Error(&node, path, "The value must be a number or one of " + known + ".");
        }
    } else if (node.is_string() && (field.kind == Kind::Name || field.kind == Kind::Command ||
                                    field.kind == Kind::Number || field.kind == Kind::ListStart)) {
        number = Symbol(node, path, field);
    } else if (field.kind == Kind::Name || field.kind == Kind::Command) {
        number = Integer(node, path, bottom, top);
    } else if (field.kind == Kind::Signed || field.kind == Kind::ListStart) {
        number = Integer(node, path, bottom, top / 2);
    } else {
        number = Integer(node, path, 0, top);
    }
    if (number) {
        PutNumber(out, field.width, static_cast<u64>(*number));
    }
}

void Compiler::Row(const toml::node& node, const std::string& path, const Table& table, bool closing,
                   Bytes& out)
{
    std::size_t rowBytes = RowBytes(table, image);
    Bytes row(rowBytes);
    std::vector<bool> given(rowBytes);
    const toml::table* values = node.as_table();
    if (!values) {
        Error(&node, path, "A row { field = value, ... } is expected here.");
        return;
    }
    std::size_t before = result.errors.size();
    for (const Entry& entry : InTextOrder(*values)) {
        std::string fieldPath = path + "." + std::string(entry.key);
        const Field* field = FindField(table.fields, entry.key);
        if (!field || !FieldApplies(*field, image)) {
            Error(entry.node, fieldPath,
                  field ? "This kind of model has no such field in its rows."
                        : "Rows of this table have no such field.");
            continue;
        }
        if (closing && field->offset == 0) {
            Error(entry.node, fieldPath, "The first field of a closing row is zero and cannot be set.");
            continue;
        }
        if (given[field->offset] || given[field->offset + field->width - 1u]) {
            Error(entry.node, fieldPath, "Another field of the row already gives these bytes.");
            continue;
        }
        std::fill_n(given.begin() + field->offset, field->width, true);
        Value(*entry.node, fieldPath, *field, row.data() + field->offset);
    }
    const Field& first = table.fields[0];
    if (first.kind == Kind::Used && !closing && !given[0]) {
        row[0] = 1;
    }
    bool zero = std::all_of(row.begin(), row.begin() + table.endBytes, [](u8 byte) { return byte == 0; });
    if (!closing && zero && table.form != Form::Ids && result.errors.size() == before) {
        Error(&node, path, std::string("A row whose ") + first.key + " is 0 would end the table here.");
    }
    out.insert(out.end(), row.begin(), row.end());
}

/* The array `rows` of a section; null with an error when it is not there. */
const toml::array* Compiler::Rows(const toml::table& section, const std::string& path)
{
    const toml::node* rows = section.get("rows");
    if (!rows || !rows->is_array()) {
        Error(rows ? rows : &section, path + ".rows",
              "The section needs an array of rows, which may be empty.");
        return nullptr;
    }
    return rows->as_array();
}

void Compiler::RowTable(const toml::table& section, const Table& table, Bytes& out)
{
    std::string path = table.key;
    for (const Entry& entry : InTextOrder(section)) {
        if (entry.key != "rows" && (entry.key != "closing" || table.form != Form::ClosingRows)) {
            Error(entry.node, path + "." + std::string(entry.key), "The section has no such key.");
        }
    }
    if (const toml::array* rows = Rows(section, path)) {
        for (std::size_t i = 0; i < rows->size(); i++) {
            Row(*rows->get(i), path + ".rows[" + std::to_string(i) + "]", table, false, out);
        }
    }
    if (const toml::node* closing = table.form == Form::ClosingRows ? section.get("closing") : nullptr) {
        Row(*closing, path + ".closing", table, true, out);
    } else {
        out.resize(out.size() + RowBytes(table, image));
    }
}

void Compiler::ListTable(const toml::table& section, const Table& table, Bytes& out)
{
    std::size_t start = out.size();
    for (const Entry& list : InTextOrder(section)) {
        std::string path = std::string(table.key) + "." + std::string(list.key);
        const toml::array* rows = list.node->as_array();
        if (!rows) {
            Error(list.node, path, "A list of rows is expected here; an empty one stands for a typed value.");
            continue;
        }
        for (std::size_t i = 0; i < rows->size(); i++) {
            Row(*rows->get(i), path + "[" + std::to_string(i) + "]", table, false, out);
        }
        out.resize(out.size() + RowBytes(table, image));
    }
    if (out.size() == start) {
        out.resize(out.size() + RowBytes(table, image));
    }
}

void Compiler::PairTable(const toml::table& section, const Table& table, Bytes& out)
{
    const toml::array* rows = Rows(section, table.key);
    for (std::size_t i = 0; rows && i < rows->size(); i++) {
        std::string path = std::string(table.key) + ".rows[" + std::to_string(i) + "]";
        const toml::table* pair = rows->get(i)->as_table();
        for (const char* key : {"screen", "device"}) {
            const toml::node* node = pair ? pair->get(key) : nullptr;
            std::optional<std::string> text = node ? Ansi(*node, path + "." + key) : std::nullopt;
            if (!node || (text && text->empty()) || pair->size() != 2) {
                Error(rows->get(i), path, "A pair is { screen = \"...\", device = \"...\" }, neither empty.");
                break;
            }
            if (text) {
                out.insert(out.end(), text->begin(), text->end());
                out.push_back(0);
            }
        }
    }
    out.push_back(0);
}

/* The tables that are values of [model]: ids, texts and the space for font page numbers. */
void Compiler::ModelTable(const toml::node& node, const Table& table, Bytes& out)
{
    std::string path = std::string("model.") + table.key;
    if (table.form == Form::Text) {
        if (auto text = Ansi(node, path)) {
            out.insert(out.end(), text->begin(), text->end());
            out.push_back(0);
        }
    } else if (table.form == Form::Space) {
        if (auto cells = Integer(node, path, 1, 30000)) {
            out.resize(out.size() + static_cast<std::size_t>(*cells) * table.rowBytes);
        }
    } else {
        const toml::array* ids = node.as_array();
        if (!ids || ids->empty()) {
            Error(&node, path, "A list of at least one text is expected here.");
            return;
        }
        for (std::size_t i = 0; i < ids->size(); i++) {
            u8 id[2] = {};
            Value(*ids->get(i), path + "[" + std::to_string(i) + "]", table.fields[0], id);
            out.insert(out.end(), id, id + 2);
        }
    }
}

/* First rows of all lists, before any row refers to them. */
void Compiler::PlaceLists()
{
    for (const Table& table : TABLES) {
        const toml::table* section = table.form == Form::Lists ? root[table.key].as_table() : nullptr;
        i64 row = 0;
        for (const Entry& list : section ? InTextOrder(*section) : std::vector<Entry>()) {
            listStarts[table.key][list.key] = row;
            const toml::array* rows = list.node->as_array();
            row += rows ? static_cast<i64>(rows->size()) + 1 : 1;
        }
    }
}

void Compiler::Model()
{
    const toml::table* model = root["model"].as_table();
    body.assign(FIXED_BODY_BYTES, 0);
    if (!model) {
        Error(nullptr, "model", "The section [model] is missing.");
        return;
    }
    const toml::table* fonts = root["fonts"].as_table();
    const toml::array* rows = fonts ? (*fonts)["rows"].as_array() : nullptr;
    PutNumber(body.data() + FindField(MODEL_FIELDS, "res_font_count")->offset, 2, rows ? rows->size() : 0);
    for (const Entry& entry : InTextOrder(*model)) {
        std::string path = "model." + std::string(entry.key);
        const Table* table = FindTable(entry.key);
        if (const Field* field = FindField(MODEL_FIELDS, entry.key)) {
            Value(*entry.node, path, *field, body.data() + field->offset);
        } else if (!table || HasSection(*table)) {
            Error(entry.node, path, "[model] has no such field.");
        }
    }
    for (const Table& table : TABLES) {
        const toml::node* node = HasSection(table) ? root.get(table.key) : model->get(table.key);
        const toml::table* section = node ? node->as_table() : nullptr;
        if (!node || (HasSection(table) && !section)) {
            continue;
        }
        PutNumber(body.data() + table.slot, 8, body.size());
        switch (table.form) {
        case Form::Rows:
        case Form::ClosingRows: RowTable(*section, table, body); break;
        case Form::Lists: ListTable(*section, table, body); break;
        case Form::Pairs: PairTable(*section, table, body); break;
        case Form::Ids:
        case Form::Text:
        case Form::Space: ModelTable(*node, table, body); break;
        }
    }
    if (body.size() > MAX_BODY_BYTES) {
        Error(nullptr, "model", "The tables of the body take more than 65535 bytes.");
    }
}

void Compiler::CheckSections()
{
    constexpr std::string_view OTHERS[] = {"model", "strings", "commands", "fonts", "bitmaps", "color_data"};
    for (const Entry& entry : InTextOrder(root)) {
        const Table* table = FindTable(entry.key);
        bool other = std::find(std::begin(OTHERS), std::end(OTHERS), entry.key) != std::end(OTHERS);
        if (!other && !(table && HasSection(*table))) {
            Error(entry.node, std::string(entry.key), "A description has no such section.");
        } else if (!entry.node->is_table()) {
            Error(entry.node, std::string(entry.key),
                  "A section [" + std::string(entry.key) + "] is expected.");
        }
    }
}

void Compiler::Assemble()
{
    Bytes& file = result.bytes;
    file.assign(HEADER_BYTES, 0);
    sections[BODY] = body;
    for (unsigned i = BODY; i <= COLOR_DATA; i++) {
        PutNumber(file.data() + 4 * i, 4, file.size());
        file.insert(file.end(), sections[i].begin(), sections[i].end());
    }
    PutNumber(file.data() + std::size_t{4} * COLOR_SIZE, 4, sections[COLOR_DATA].size());
}

void Compiler::Run()
{
    CheckSections();
    Strings();
    Commands();
    ColorData();
    PlaceLists();
    if (const toml::node* language = root["model"]["language"].node()) {
        u8 kind[2] = {};
        std::size_t before = result.errors.size();
        Value(*language, "model.language", MODEL_FIELDS[0], kind);
        result.errors.resize(before); /* Model says it again */
        image = kind[0] == IMAGE_KIND && kind[1] == 0;
    }
    Model();
    Fonts();
    Bitmaps();
    if (result.errors.empty()) {
        Assemble();
    }
}

} // namespace xpifile

using namespace xpifile;

XpiCompiled CompileXpi(std::string_view text, std::string_view fileName,
                       std::span<const XpiOverride> overrides)
{
    Compiler compiler;
    if (int line = LineOfStrayCharacter(text)) {
        compiler.result.errors.push_back(
            {line, "",
             "A character has no place here: beyond ASCII outside quotation marks, or a control character."});
        return compiler.result;
    }
    try {
        compiler.root = toml::parse(text, fileName);
    } catch (const toml::parse_error& error) {
        compiler.result.errors.push_back(
            {static_cast<int>(error.source().begin.line), "", std::string(error.description())});
        return compiler.result;
    }
    for (const XpiOverride& change : overrides) {
        if (!ApplyOverride(compiler.root, change, compiler.result.errors)) {
            return compiler.result;
        }
    }
    compiler.Run();
    return compiler.result;
}

std::string FormatXpiError(std::string_view fileName, const XpiError& error)
{
    std::string text(fileName);
    text += error.line > 0 ? ":" + std::to_string(error.line) : "";
    text += error.field.empty() ? "" : ": " + error.field;
    return text + ": " + error.message;
}
