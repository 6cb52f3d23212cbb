/* A small PE file, made from a list of resources, and the forms of some of them. */
#ifndef TQUI_TESTS_TINY_PE_H
#define TQUI_TESTS_TINY_PE_H

#include <string>
#include <vector>

#include "hosted/pe_resources.h"

using Bytes = std::vector<u8>;

struct TinyResource {
    PeName type, name;
    u16 usLanguage;
    Bytes data;
};

inline void Put16(Bytes* pBytes, size_t nOffset, unsigned nValue)
{
    (*pBytes)[nOffset] = static_cast<u8>(nValue);
    (*pBytes)[nOffset + 1] = static_cast<u8>(nValue >> 8);
}

inline void Put32(Bytes* pBytes, size_t nOffset, u32 ulValue)
{
    Put16(pBytes, nOffset, ulValue & 0xFFFF);
    Put16(pBytes, nOffset + 2, ulValue >> 16);
}

constexpr size_t RSRC = 0x200;  /* where the section lies in the file */
constexpr u32 ADDRESS = 0x3000; /* and when loaded */

/* Resources of one type, and of one name in it, stand side by side in the list. */
struct TinyPe {
    Bytes bytes;
    size_t nSection; /* offset of the section header */
    size_t nTables;  /* offset of the data directories */

    TinyPe(const std::vector<TinyResource>& list, bool bWide = true) : bytes(RSRC)
    {
        const size_t nOptional = 0x40 + 24;
        nTables = nOptional + (bWide ? 112 : 96);
        nSection = nTables + 16 * 8;
        Put16(&bytes, 0, 0x5A4D);
        Put32(&bytes, 60, 0x40);
        Put32(&bytes, 0x40, 0x4550);
        Put16(&bytes, 0x44, bWide ? 0x8664 : 0x014C);
        Put16(&bytes, 0x46, 1);
        Put16(&bytes, 0x54, static_cast<unsigned>(nSection - nOptional));
        Put16(&bytes, nOptional, bWide ? 0x20B : 0x10B);
        Put32(&bytes, nTables - 4, 16);
        Put32(&bytes, nTables + 16, ADDRESS);

        Level(list, 0);
        Put32(&bytes, nTables + 20, Size());
        Put32(&bytes, nSection + 8, Size());
        Put32(&bytes, nSection + 12, ADDRESS);
        Put32(&bytes, nSection + 16, Size());
        Put32(&bytes, nSection + 20, RSRC);
    }

    u32 Size() const { return static_cast<u32>(bytes.size() - RSRC); }

    /* Appends a directory of one level with all that is below it; its offset in the section. */
    u32 Level(const std::vector<TinyResource>& list, int nLevel)
    {
        const auto key = [nLevel](const TinyResource& r) {
            return nLevel == 0 ? r.type : nLevel == 1 ? r.name : PeName(r.usLanguage);
        };
        std::vector<PeName> keys;
        for (const TinyResource& resource : list) {
            if (keys.empty() || !(keys.back() == key(resource))) {
                keys.push_back(key(resource));
            }
        }
        const u32 ulStart = Size();
        bytes.resize(bytes.size() + 16 + 8 * keys.size());
        Put16(&bytes, RSRC + ulStart + 14, static_cast<unsigned>(keys.size()));
        for (size_t n = 0; n < keys.size(); n++) {
            std::vector<TinyResource> below;
            for (const TinyResource& resource : list) {
                if (key(resource) == keys[n]) {
                    below.push_back(resource);
                }
            }
            const size_t nEntry = RSRC + ulStart + 16 + 8 * n;
            u32 ulName = keys[n].usId;
            if (!keys[n].wcName.empty()) {
                ulName = 0x80000000 | Size();
                const size_t nText = bytes.size();
                bytes.resize(nText + 2 + 2 * keys[n].wcName.size());
                Put16(&bytes, nText, static_cast<unsigned>(keys[n].wcName.size()));
                for (size_t k = 0; k < keys[n].wcName.size(); k++) {
                    Put16(&bytes, nText + 2 + 2 * k, keys[n].wcName[k]);
                }
            }
            Put32(&bytes, nEntry, ulName);
            const u32 ulBelow = nLevel < 2 ? 0x80000000 | Level(below, nLevel + 1) : Data(below[0].data);
            Put32(&bytes, nEntry + 4, ulBelow);
        }
        return ulStart;
    }

    u32 Data(const Bytes& data)
    {
        const u32 ulEntry = Size();
        bytes.resize(bytes.size() + 16);
        Put32(&bytes, RSRC + ulEntry, ADDRESS + Size());
        Put32(&bytes, RSRC + ulEntry + 4, static_cast<u32>(data.size()));
        bytes.insert(bytes.end(), data.begin(), data.end());
        return ulEntry;
    }
};

/* A block of strings as a resource of type PE_STRING. */
inline Bytes StringBlock(const std::vector<std::u16string>& texts)
{
    Bytes block;
    for (const std::u16string& wcText : texts) {
        block.resize(block.size() + 2 + 2 * wcText.size());
        size_t nOffset = block.size() - 2 - 2 * wcText.size();
        Put16(&block, nOffset, static_cast<unsigned>(wcText.size()));
        for (const char16_t wcChar : wcText) {
            Put16(&block, nOffset += 2, wcChar);
        }
    }
    return block;
}

/* One block of a version resource: name, value (of a text: its characters with the NUL), what is below it. */
inline Bytes VersionPart(const std::u16string& wcName, const Bytes& value, bool bText,
                         const std::vector<Bytes>& below = {})
{
    Bytes part(6);
    for (const char16_t wcChar : wcName + u'\0') {
        part.resize(part.size() + 2);
        Put16(&part, part.size() - 2, wcChar);
    }
    part.resize((part.size() + 3) & ~size_t{3});
    part.insert(part.end(), value.begin(), value.end());
    for (const Bytes& inner : below) {
        part.resize((part.size() + 3) & ~size_t{3});
        part.insert(part.end(), inner.begin(), inner.end());
    }
    Put16(&part, 0, static_cast<unsigned>(part.size()));
    Put16(&part, 2, static_cast<unsigned>(bText ? value.size() / 2 : value.size()));
    Put16(&part, 4, bText);
    return part;
}

inline Bytes WideBytes(const std::u16string& wcText)
{
    Bytes bytes(2 * wcText.size());
    for (size_t n = 0; n < wcText.size(); n++) {
        Put16(&bytes, 2 * n, wcText[n]);
    }
    return bytes;
}

/* A version resource with the text FileVersion in the table of that name ("040904B0") and the translation that it tells
   of; an empty translation leaves that out. */
inline Bytes VersionResource(const std::u16string& wcTable, const std::u16string& wcVersion,
                             const Bytes& translation)
{
    const Bytes text = VersionPart(u"FileVersion", WideBytes(wcVersion + u'\0'), true);
    const Bytes table =
        VersionPart(wcTable, {}, true,
                    {VersionPart(u"InternalName", WideBytes(std::u16string(u"X") + u'\0'), true), text});
    std::vector<Bytes> below = {VersionPart(u"StringFileInfo", {}, true, {table})};
    if (!translation.empty()) {
        below.push_back(
            VersionPart(u"VarFileInfo", {}, true, {VersionPart(u"Translation", translation, false)}));
    }
    return VersionPart(u"VS_VERSION_INFO", Bytes(52), false, below);
}

/* A library whose only resource is that one. */
inline Bytes VersionedFile(const Bytes& resource)
{
    return TinyPe({{u16{16}, u16{1}, 0x0409, resource}}).bytes;
}

#endif
