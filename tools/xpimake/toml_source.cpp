/* Order, lines and overrides of a parsed description. */
#include "toml_source.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>

namespace xpifile {

std::vector<Entry> InTextOrder(const toml::table& table)
{
    struct Placed {
        Entry entry;
        toml::source_position place;
    };
    std::vector<Placed> placed;
    for (auto&& [key, node] : table) {
        placed.push_back({{key.str(), &node}, key.source().begin});
    }
    std::stable_sort(placed.begin(), placed.end(), [](const Placed& a, const Placed& b) {
        bool added = a.place.line == 0;
        return added != (b.place.line == 0) ? !added : a.place < b.place;
    });
    std::vector<Entry> entries;
    for (const Placed& item : placed) {
        entries.push_back(item.entry);
    }
    return entries;
}

int LineOf(const toml::node& node)
{
    return static_cast<int>(node.source().begin.line);
}

int LineOfStrayCharacter(std::string_view text)
{
    int line = 1;
    std::string_view open; /* the quotation marks or the # that the text is behind */
    for (std::size_t i = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; i < text.size(); i++) {
        char c = text[i];
        auto byte = static_cast<unsigned char>(c);
        if (byte == 0x7F || (byte < 0x20 && c != '\n' && c != '\r' && c != '\t')) {
            return line;
        }
        if (c == '\n') {
            line++;
            open = open.size() == 3 ? open : ""; /* only three marks span lines */
        } else if (open.empty()) {
            if (byte >= 0x80) {
                return line;
            }
            for (std::string_view mark : {"\"\"\"", "'''", "\"", "'", "#"}) {
                if (text.substr(i).starts_with(mark)) {
                    open = mark;
                    i += mark.size() - 1;
                    break;
                }
            }
        } else if (c == '\\' && open[0] == '"') {
            i += i + 1 < text.size() && text[i + 1] != '\n' ? 1 : 0;
        } else if (open != "#" && text.substr(i).starts_with(open)) {
            i += open.size() - 1;
            while (open.size() == 3 && i + 1 < text.size() && text[i + 1] == c) {
                i++; /* a mark or two more belong to the text */
            }
            open = "";
        }
    }
    return 0;
}

/* One step of a path: a key, or an index when the key is empty. */
struct Step {
    std::string key;
    std::size_t index = 0;
};

static std::optional<std::vector<Step>> ParsePath(std::string_view path)
{
    std::vector<Step> steps;
    while (!path.empty()) {
        if (path[0] == '[') {
            std::size_t close = path.find(']');
            Step step;
            if (close == std::string_view::npos) {
                return std::nullopt;
            }
            auto [end, error] = std::from_chars(path.data() + 1, path.data() + close, step.index);
            if (error != std::errc() || end != path.data() + close) {
                return std::nullopt;
            }
            steps.push_back(step);
            path.remove_prefix(close + 1);
            if (!path.empty() && path[0] == '.' && path.size() > 1) {
                path.remove_prefix(1);
            }
            continue;
        }
        std::size_t end = std::min(path.find_first_of(".["), path.size());
        if (end == 0) {
            return std::nullopt;
        }
        steps.push_back({std::string(path.substr(0, end)), 0});
        bool dot = end < path.size() && path[end] == '.';
        path.remove_prefix(end + (dot ? 1 : 0));
        if (dot && path.empty()) {
            return std::nullopt;
        }
    }
    return steps;
}

/* Puts a copy of the value where the last step points; a copy carries no line. */
static bool Put(toml::node& parent, const Step& step, const toml::node& value)
{
    bool done = false;
    value.visit([&](const auto& typed) {
        if (toml::table* table = parent.as_table(); table && !step.key.empty()) {
            table->insert_or_assign(step.key, typed);
            done = true;
        } else if (toml::array* array = parent.as_array(); array && step.key.empty()) {
            if (step.index < array->size()) {
                array->replace(array->cbegin() + static_cast<std::ptrdiff_t>(step.index), typed);
                done = true;
            } else if (step.index == array->size()) {
                array->push_back(typed);
                done = true;
            }
        }
    });
    return done;
}

static bool Remove(toml::node& parent, const Step& step)
{
    if (toml::table* table = parent.as_table(); table && !step.key.empty()) {
        return table->erase(step.key) > 0;
    }
    toml::array* array = parent.as_array();
    if (array && step.key.empty() && step.index < array->size()) {
        array->erase(array->cbegin() + static_cast<std::ptrdiff_t>(step.index));
        return true;
    }
    return false;
}

static bool Fail(std::vector<XpiError>& errors, const XpiOverride& change, const char* message)
{
    errors.push_back({0, change.path, message});
    return false;
}

bool ApplyOverride(toml::table& root, const XpiOverride& change, std::vector<XpiError>& errors)
{
    std::optional<std::vector<Step>> steps = ParsePath(change.path);
    if (!steps || steps->empty()) {
        return Fail(errors, change, "The path of the override does not read as keys and [indices].");
    }
    toml::node* parent = &root;
    for (std::size_t i = 0; i + 1 < steps->size(); i++) {
        const Step& step = (*steps)[i];
        toml::node* child = nullptr;
        if (toml::table* table = parent->as_table(); table && !step.key.empty()) {
            child = table->get(step.key);
            if (!child && !change.value.empty() && !(*steps)[i + 1].key.empty()) {
                child = &table->insert_or_assign(step.key, toml::table()).first->second;
            }
        } else if (toml::array* array = parent->as_array(); array && step.key.empty()) {
            child = array->get(step.index);
        }
        if (!child) {
            return Fail(errors, change, "The override leads to a value that is not in the text.");
        }
        parent = child;
    }
    if (change.value.empty()) {
        return Remove(*parent, steps->back()) ||
               Fail(errors, change, "The override removes a value that is not in the text.");
    }
    if (LineOfStrayCharacter(change.value) != 0) {
        return Fail(errors, change, "The override is not a TOML value.");
    }
    try {
        toml::table parsed = toml::parse("value = " + change.value);
        if (parsed.size() != 1) {
            return Fail(errors, change, "The override must be one TOML value.");
        }
        return Put(*parent, steps->back(), *parsed.get("value")) ||
               Fail(errors, change, "The override leads to a value that is not in the text.");
    } catch (const toml::parse_error&) {
        return Fail(errors, change, "The override is not a TOML value.");
    }
}

} // namespace xpifile
