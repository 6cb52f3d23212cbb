/* Text forms of the description compiler. */
#include "ansi_text.h"

#include <array>
#include <charconv>

namespace xpifile {

/* Code points of the bytes 0x80 to 0x9F; the rest of the page is the first 256 code points. */
static constexpr std::array<u16, 32> C1_BYTES = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct LanguageName {
    const char* key;
    int id;
};
static constexpr LanguageName LANGUAGES[] = {
    {"ar", 0x01}, {"bg", 0x02}, {"ca", 0x03}, {"zh", 0x04}, {"cs", 0x05}, {"da", 0x06}, {"de", 0x07},
    {"el", 0x08}, {"en", 0x09}, {"es", 0x0A}, {"fi", 0x0B}, {"fr", 0x0C}, {"he", 0x0D}, {"hu", 0x0E},
    {"is", 0x0F}, {"it", 0x10}, {"ja", 0x11}, {"ko", 0x12}, {"nl", 0x13}, {"no", 0x14}, {"pl", 0x15},
    {"pt", 0x16}, {"ro", 0x18}, {"ru", 0x19}, {"hr", 0x1A}, {"sk", 0x1B}, {"sq", 0x1C}, {"sv", 0x1D},
    {"th", 0x1E}, {"tr", 0x1F}, {"uk", 0x22}, {"sl", 0x24}, {"et", 0x25}, {"lv", 0x26}, {"lt", 0x27},
    {"vi", 0x2A}, {"eu", 0x2D}, {"af", 0x36}, {"hi", 0x39}};

static int AnsiByte(unsigned codePoint)
{
    for (unsigned i = 0; i < C1_BYTES.size(); i++) {
        if (C1_BYTES[i] == codePoint) {
            return static_cast<int>(0x80 + i);
        }
    }
    return codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF) ? static_cast<int>(codePoint) : -1;
}

std::optional<std::string> ToAnsi(std::string_view utf8)
{
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size();) {
        unsigned lead = static_cast<u8>(utf8[i]);
        std::size_t more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        if (i + more >= utf8.size()) {
            return std::nullopt;
        }
        unsigned codePoint = more == 0 ? lead : lead & (0x3Fu >> more);
        for (std::size_t k = 1; k <= more; k++) {
            codePoint = codePoint << 6 | (static_cast<u8>(utf8[i + k]) & 0x3Fu);
        }
        int byte = AnsiByte(codePoint);
        if (byte < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(byte));
        i += more + 1;
    }
    return bytes;
}

std::string QuoteAnsi(std::string_view bytes)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text = "\"";
    for (char c : bytes) {
        unsigned byte = static_cast<u8>(c);
        unsigned codePoint = byte >= 0x80 && byte < 0xA0 ? C1_BYTES[byte - 0x80] : byte;
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\r') {
            text += "\\r";
        } else if (codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0)) {
            text += "\\u00";
            text += DIGITS[codePoint >> 4];
            text += DIGITS[codePoint & 15];
        } else if (codePoint < 0x80) {
            text += c;
        } else if (codePoint < 0x800) {
            text += static_cast<char>(0xC0 | codePoint >> 6);
            text += static_cast<char>(0x80 | (codePoint & 0x3F));
        } else {
            text += static_cast<char>(0xE0 | codePoint >> 12);
            text += static_cast<char>(0x80 | (codePoint >> 6 & 0x3F));
            text += static_cast<char>(0x80 | (codePoint & 0x3F));
        }
    }
    return text + '"';
}

static int HexDigit(char c)
{
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
}

std::optional<std::vector<u8>> FromHex(std::string_view text)
{
    std::vector<u8> bytes;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ' || text[i] == '\n' || text[i] == '\r' || text[i] == '\t') {
            i++;
            continue;
        }
        int high = HexDigit(text[i]);
        int low = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<u8>(high * 16 + low));
        i += 2;
    }
    return bytes;
}

std::string ToHex(std::span<const u8> bytes)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (u8 byte : bytes) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 15];
    }
    return text;
}

int LanguageId(std::string_view key)
{
    for (const LanguageName& language : LANGUAGES) {
        if (key == language.key) {
            return language.id;
        }
    }
    unsigned id = 0;
    auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), id);
    bool number = error == std::errc() && end == key.data() + key.size() && id < LANGUAGE_ROWS;
    return number ? static_cast<int>(id) : -1;
}

std::string LanguageKey(unsigned id)
{
    for (const LanguageName& language : LANGUAGES) {
        if (id == static_cast<unsigned>(language.id)) {
            return language.key;
        }
    }
    return std::to_string(id);
}

} // namespace xpifile
