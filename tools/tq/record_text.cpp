/* Writes settings records as text and reads them back, both from one table of fields. */
#include "tools/tq/record_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>
#include <sstream>

#include "tools/tq/record_fields.h"

namespace {

const FieldPlace& FindPlace(const std::string& name)
{
    for (const FieldPlace& place : RecordPlaces()) {
        if (place.name == name) {
            return place;
        }
    }
    throw RecordTextError(name + ": there is no such field");
}

const u8* BytesAt(const DriverDevmode& record, unsigned nOffset)
{
    return reinterpret_cast<const u8*>(&record) + nOffset;
}

/* An unsigned number of one, two or four bytes. */
u32 TakeNumber(const u8* pBytes, unsigned nBytes)
{
    u32 ulNumber = 0;
    for (unsigned n = 0; n < nBytes; n++) {
        ulNumber |= static_cast<u32>(pBytes[n]) << 8 * n;
    }
    return ulNumber;
}

std::string Formatted(const char* cFormat, u32 ulNumber)
{
    char cText[16];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(cText, sizeof cText, cFormat, ulNumber);
#pragma GCC diagnostic pop
    return cText;
}

std::string QuotedText(const u8* pBytes, unsigned nBytes, unsigned nWidth)
{
    unsigned nEnd = nBytes / nWidth;
    while (nEnd && !TakeNumber(pBytes + (nEnd - 1) * nWidth, nWidth)) {
        nEnd--;
    }
    std::string text = "\"";
    for (unsigned n = 0; n < nEnd; n++) {
        u32 ulChar = TakeNumber(pBytes + n * nWidth, nWidth);
        switch (ulChar) {
        case '\r': text += "\\r"; break;
        case '\n': text += "\\n"; break;
        case '\t': text += "\\t"; break;
        case '\\': text += "\\\\"; break;
        case '"': text += "\\\""; break;
        default:
            text += ulChar >= 0x20 && ulChar < 0x7F ? std::string(1, static_cast<char>(ulChar))
                                                    : Formatted(nWidth == 2 ? "\\u%04X" : "\\x%02X", ulChar);
        }
    }
    return text + "\"";
}

std::string HexText(const u8* pBytes, unsigned nBytes)
{
    std::string text;
    while (nBytes && !pBytes[nBytes - 1]) {
        nBytes--;
    }
    for (unsigned n = 0; n < nBytes; n++) {
        text += Formatted("%02X", pBytes[n]);
    }
    return text.empty() ? "00" : text;
}

std::string ValueText(const FieldPlace& place, const u8* pBytes)
{
    u32 ulNumber = place.nBytes <= 4 ? TakeNumber(pBytes, place.nBytes) : 0;
    switch (place.kind) {
    case SIGNED_NUMBER: {
        u32 ulSign = 1u << (8 * place.nBytes - 1);
        return std::to_string(static_cast<i64>(ulNumber ^ ulSign) - static_cast<i64>(ulSign));
    }
    case UNSIGNED_NUMBER: return std::to_string(ulNumber);
    case FLAGS: return Formatted(place.nBytes == 4 ? "0x%08X" : "0x%04X", ulNumber);
    case WIDE_TEXT: return QuotedText(pBytes, place.nBytes, 2);
    case NARROW_TEXT: return QuotedText(pBytes, place.nBytes, 1);
    default: return HexText(pBytes, place.nBytes);
    }
}

FieldValue ValueAt(const FieldPlace& place, const DriverDevmode& record)
{
    return {place.name, place.nOffset, place.nBytes, ValueText(place, BytesAt(record, place.nOffset))};
}

/* A whole text as a number of the base; false for anything else and beyond 64 bits. */
bool ReadNumber(const std::string& text, int nBase, i64* plNumber)
{
    try {
        size_t nRead = 0;
        *plNumber = std::stoll(text, &nRead, nBase);
        return nRead == text.size() && !std::isspace(static_cast<unsigned char>(text[0]));
    } catch (const std::logic_error&) {
        return false;
    }
}

std::vector<u8> NumberBytes(const FieldPlace& place, const std::string& value)
{
    const i64 lWhole = i64{1} << 8 * place.nBytes;
    i64 lNumber = 0, lLow = 0, lHigh = lWhole - 1;
    bool bHex = value.starts_with("0x");
    bool bRead = bHex ? ReadNumber(value.substr(2), 16, &lNumber) && value[2] != '-' && value[2] != '+'
                      : ReadNumber(value, 10, &lNumber);
    if (place.kind == SIGNED_NUMBER && !bHex) { /* hex is the bytes as they stand */
        lLow = -lWhole / 2;
        lHigh = lWhole / 2 - 1;
    }
    if (!bRead || lNumber < lLow || lNumber > lHigh) {
        throw RecordTextError(place.name + ": not a number from " + std::to_string(lLow) + " to " +
                              std::to_string(lHigh) + ": " + value);
    }
    std::vector<u8> bytes;
    for (unsigned n = 0; n < place.nBytes; n++) {
        bytes.push_back(static_cast<u8>(static_cast<u64>(lNumber) >> 8 * n));
    }
    return bytes;
}

/* The characters of a text without or with its quotation marks. */
std::vector<u32> TextCharacters(const FieldPlace& place, const std::string& value)
{
    bool bQuoted = value.starts_with('"');
    if (bQuoted && (value.size() < 2 || !value.ends_with('"'))) {
        throw RecordTextError(place.name + ": the closing quotation mark is missing");
    }
    std::string text = bQuoted ? value.substr(1, value.size() - 2) : value;
    std::vector<u32> characters;
    for (size_t n = 0; n < text.size(); n++) {
        char c = text[n];
        if (c == '"' || (c & 0x80)) {
            throw RecordTextError(place.name + ": write this character with a backslash: " + text.substr(n));
        }
        if (c != '\\' || !bQuoted) {
            characters.push_back(static_cast<u8>(c));
            continue;
        }
        static const std::string simple = "rnt\\\"", meaning = "\r\n\t\\\"";
        char cNext = n + 1 < text.size() ? text[n + 1] : '\0';
        if (size_t nAt = simple.find(cNext); nAt != std::string::npos && cNext) {
            characters.push_back(static_cast<u8>(meaning[nAt]));
            n++;
            continue;
        }
        size_t nDigits = cNext == 'x' ? 2 : cNext == 'u' && place.kind == WIDE_TEXT ? 4 : 0;
        std::string digits = nDigits && n + 2 + nDigits <= text.size() ? text.substr(n + 2, nDigits) : "-";
        i64 lNumber;
        if (digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos ||
            !ReadNumber(digits, 16, &lNumber)) {
            throw RecordTextError(place.name + ": not a character: " + text.substr(n));
        }
        characters.push_back(static_cast<u32>(lNumber));
        n += 1 + nDigits;
    }
    return characters;
}

std::vector<u8> TextBytes(const FieldPlace& place, const std::string& value)
{
    unsigned nWidth = place.kind == WIDE_TEXT ? 2 : 1;
    std::vector<u8> bytes;
    for (u32 ulChar : TextCharacters(place, value)) {
        for (unsigned n = 0; n < nWidth; n++) {
            bytes.push_back(static_cast<u8>(ulChar >> 8 * n));
        }
    }
    if (bytes.size() > place.nBytes) {
        throw RecordTextError(place.name + ": more than " + std::to_string(place.nBytes / nWidth) +
                              " characters");
    }
    bytes.resize(place.nBytes);
    return bytes;
}

std::vector<u8> HexBytes(const FieldPlace& place, const std::string& value)
{
    if (value.empty() || value.size() % 2 || value.size() / 2 > place.nBytes ||
        value.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
        throw RecordTextError(place.name + ": not hex digits of up to " + std::to_string(place.nBytes) +
                              " bytes: " + value);
    }
    std::vector<u8> bytes;
    for (size_t n = 0; n < value.size(); n += 2) {
        bytes.push_back(static_cast<u8>(std::stoul(value.substr(n, 2), nullptr, 16)));
    }
    bytes.resize(place.nBytes);
    return bytes;
}

void StoreValue(DriverDevmode* pRecord, const FieldPlace& place, const std::string& value)
{
    std::vector<u8> bytes = place.kind == WIDE_TEXT || place.kind == NARROW_TEXT ? TextBytes(place, value)
                            : place.kind == PLAIN_BYTES                          ? HexBytes(place, value)
                                                                                 : NumberBytes(place, value);
    std::memcpy(reinterpret_cast<u8*>(pRecord) + place.nOffset, bytes.data(), place.nBytes);
}

} // namespace

std::vector<FieldValue> RecordFields(const DriverDevmode& record)
{
    std::vector<FieldValue> fields;
    for (const FieldPlace& place : RecordPlaces()) {
        if (!place.bSecondName) {
            fields.push_back(ValueAt(place, record));
        }
    }
    return fields;
}

std::vector<FieldValue> DifferingFields(const DriverDevmode& first, const DriverDevmode& second)
{
    std::vector<FieldValue> fields;
    for (const FieldPlace& place : RecordPlaces()) {
        if (!place.bSecondName &&
            std::memcmp(BytesAt(first, place.nOffset), BytesAt(second, place.nOffset), place.nBytes) != 0) {
            fields.push_back(ValueAt(place, second));
        }
    }
    return fields;
}

FieldValue FieldOf(const DriverDevmode& record, const std::string& name)
{
    return ValueAt(FindPlace(name), record);
}

std::string FieldLines(const std::vector<FieldValue>& fields)
{
    constexpr size_t NAME_COLUMNS = 33; /* the longest name and a blank */
    std::string text;
    for (const FieldValue& field : fields) {
        std::string offset = std::to_string(field.nOffset);
        text += field.name;
        text.append(NAME_COLUMNS - field.name.size(), ' ').append(4 - offset.size(), ' ');
        text.append(offset).append("  ").append(field.value).append("\n");
    }
    return text;
}

std::string RecordText(const DriverDevmode& record)
{
    return FieldLines(DifferingFields(recordTemplate, record));
}

DriverDevmode RecordFromText(const std::string& text)
{
    DriverDevmode record = recordTemplate;
    std::set<std::string> named;
    std::istringstream lines(text);
    std::string line;
    for (int nLine = 1; std::getline(lines, line); nLine++) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::istringstream words(line);
        std::string name, value;
        unsigned nOffset = 0;
        if (!(words >> name >> nOffset >> std::ws) || !std::getline(words, value)) {
            throw RecordTextError("line " + std::to_string(nLine) + ": not \"name offset value\": " + line);
        }
        const FieldPlace& place = FindPlace(name);
        if (place.nOffset != nOffset) {
            throw RecordTextError(name + ": lies at " + std::to_string(place.nOffset) + ", not at " +
                                  std::to_string(nOffset));
        }
        if (!named.insert(name).second) {
            throw RecordTextError(name + ": named twice");
        }
        StoreValue(&record, place, value);
    }
    return record;
}

void SetRecordField(DriverDevmode* pRecord, const std::string& assignment)
{
    size_t nEqual = assignment.find('=');
    if (nEqual == std::string::npos) {
        throw RecordTextError(assignment + ": not field=value");
    }
    StoreValue(pRecord, FindPlace(assignment.substr(0, nEqual)), assignment.substr(nEqual + 1));
}
