/* Reader of the resources of a PE file, bounded by the file's bytes. */
#include "hosted/pe_resources.h"

#include <algorithm>
#include <optional>

namespace {

using File = std::span<const u8>;

constexpr u16 DOS_SIGNATURE = 0x5A4D;
constexpr u32 PE_SIGNATURE = 0x00004550;
constexpr u16 OPTIONAL_PE32 = 0x010B;
constexpr u16 OPTIONAL_PE64 = 0x020B;
constexpr u16 ENGLISH_US = 0x0409;
constexpr u32 HIGH_BIT = 0x80000000;
constexpr u64 SECTION_HEADER = 40;
constexpr u32 RESOURCE_TABLE = 2; /* its row among the data directories */

/* The parts of a file are told in 64 bits, so that sums of its 32-bit fields cannot wrap. */
bool Holds(File file, u64 ulOffset, u64 cbSize)
{
    return ulOffset <= file.size() && cbSize <= file.size() - ulOffset;
}

/* Little-endian numbers; 0 outside the bytes. */
u16 U16At(File file, u64 ulOffset)
{
    return Holds(file, ulOffset, 2) ? static_cast<u16>(file[ulOffset] | file[ulOffset + 1] << 8) : u16{0};
}

u32 U32At(File file, u64 ulOffset)
{
    return Holds(file, ulOffset, 4) ? U16At(file, ulOffset) | u32{U16At(file, ulOffset + 2)} << 16 : 0;
}

/* Where the headers lie: offset of the optional header, of the section headers, and number of these. */
struct PeHeaders {
    u64 ulOptional, ulSections;
    u16 usOptionalSize, usSections;
};

std::optional<PeHeaders> ReadHeaders(File file)
{
    if (!IsPeFile(file)) {
        return {};
    }
    const u64 ulFileHeader = u64{U32At(file, 60)} + 4;
    if (!Holds(file, ulFileHeader, 20)) {
        return {};
    }
    PeHeaders headers{};
    headers.usSections = U16At(file, ulFileHeader + 2);
    headers.usOptionalSize = U16At(file, ulFileHeader + 16);
    headers.ulOptional = ulFileHeader + 20;
    headers.ulSections = headers.ulOptional + headers.usOptionalSize;
    if (!Holds(file, headers.ulSections, headers.usSections * SECTION_HEADER)) {
        return {};
    }
    return headers;
}

/* The part of the file that a section's bytes fill from a loaded address to the section's end, or nothing.
   What the file has no bytes for is not told. */
std::optional<PePiece> PieceAtAddress(File file, const PeHeaders& headers, u32 ulAddress)
{
    for (u64 n = 0; n < headers.usSections; n++) {
        const u64 ulHeader = headers.ulSections + n * SECTION_HEADER;
        const u64 ulStart = U32At(file, ulHeader + 12);
        const u64 cbStored = U32At(file, ulHeader + 16);
        const u64 ulInFile = U32At(file, ulHeader + 20);
        if (ulAddress < ulStart || ulAddress - ulStart >= cbStored) {
            continue;
        }
        const u64 ulSkipped = ulAddress - ulStart;
        if (!Holds(file, ulInFile + ulSkipped, 1)) {
            return {};
        }
        const u64 cbLeft = std::min<u64>(cbStored - ulSkipped, file.size() - ulInFile - ulSkipped);
        return PePiece{ulInFile + ulSkipped, cbLeft};
    }
    return {};
}

/* The resource tree: headers for addresses, and the bytes from the first directory to the section's end. */
struct ResourceTree {
    File file, bytes;
    PeHeaders headers;
};

std::optional<ResourceTree> OpenTree(File file)
{
    const std::optional<PeHeaders> headers = ReadHeaders(file);
    if (!headers) {
        return {};
    }
    u64 ulTables = 0; /* offset of the data directories in the optional header; their count is before them */
    switch (U16At(file, headers->ulOptional)) {
    case OPTIONAL_PE32: ulTables = 96; break;
    case OPTIONAL_PE64: ulTables = 112; break;
    default: return {};
    }
    const u64 ulRow = ulTables + RESOURCE_TABLE * 8;
    if (headers->usOptionalSize < ulRow + 8 ||
        U32At(file, headers->ulOptional + ulTables - 4) <= RESOURCE_TABLE) {
        return {};
    }
    const u32 ulAddress = U32At(file, headers->ulOptional + ulRow);
    if (ulAddress == 0) {
        return {};
    }
    const std::optional<PePiece> piece = PieceAtAddress(file, *headers, ulAddress);
    if (!piece) {
        return {};
    }
    return ResourceTree{file, file.subspan(piece->nOffset, piece->cbSize), *headers};
}

/* One entry of a directory, with its offset field split. */
struct Entry {
    u32 ulName;  /* number, or HIGH_BIT and the offset of a name */
    u32 ulBelow; /* offset of a directory or of a data entry */
    bool bDirectory;
};

/* Entries of the directory at an offset, as many as the bytes hold. */
u32 EntryCount(File bytes, u32 ulDirectory)
{
    if (!Holds(bytes, ulDirectory, 16)) {
        return 0;
    }
    const u32 nTold = u32{U16At(bytes, ulDirectory + u64{12})} + U16At(bytes, ulDirectory + u64{14});
    const u64 nRoom = (bytes.size() - ulDirectory - 16) / 8;
    return static_cast<u32>(std::min<u64>(nTold, nRoom));
}

Entry EntryAt(File bytes, u32 ulDirectory, u32 nEntry)
{
    const u64 ulOffset = ulDirectory + u64{16} + u64{nEntry} * 8;
    const u32 ulBelow = U32At(bytes, ulOffset + 4);
    return {U32At(bytes, ulOffset), ulBelow & ~HIGH_BIT, (ulBelow & HIGH_BIT) != 0};
}

std::optional<PeName> NameOf(File bytes, const Entry& entry)
{
    if ((entry.ulName & HIGH_BIT) == 0) {
        return PeName(static_cast<u16>(entry.ulName));
    }
    const u64 ulOffset = entry.ulName & ~HIGH_BIT;
    const u16 cch = U16At(bytes, ulOffset);
    if (cch == 0 || !Holds(bytes, ulOffset + 2, u64{cch} * 2)) {
        return {};
    }
    std::u16string wcText(cch, u'\0');
    for (size_t n = 0; n < cch; n++) {
        wcText[n] = U16At(bytes, ulOffset + 2 + n * 2);
    }
    return PeName(std::u16string_view(wcText));
}

/* 1 when the entry bears the name; makes no copy of a name of another length. */
bool Bears(File bytes, const Entry& entry, const PeName& name)
{
    if (name.wcName.empty()) {
        return entry.ulName == name.usId;
    }
    if ((entry.ulName & HIGH_BIT) == 0 || U16At(bytes, entry.ulName & ~HIGH_BIT) != name.wcName.size()) {
        return false;
    }
    return NameOf(bytes, entry) == name;
}

/* Offset of the directory below the entry of that name. */
std::optional<u32> DirectoryBelow(File bytes, u32 ulDirectory, const PeName& name)
{
    const u32 nEntries = EntryCount(bytes, ulDirectory);
    for (u32 n = 0; n < nEntries; n++) {
        const Entry entry = EntryAt(bytes, ulDirectory, n);
        if (entry.bDirectory && Bears(bytes, entry, name)) {
            return entry.ulBelow;
        }
    }
    return {};
}

/* The bytes that a data entry points at, if all of them lie in one section's part of the file. */
std::optional<PePiece> DataOf(const ResourceTree& tree, const Entry& entry)
{
    if (entry.bDirectory || !Holds(tree.bytes, entry.ulBelow, 16)) {
        return {};
    }
    const u32 ulAddress = U32At(tree.bytes, entry.ulBelow);
    const u32 cbSize = U32At(tree.bytes, entry.ulBelow + u64{4});
    const std::optional<PePiece> piece = PieceAtAddress(tree.file, tree.headers, ulAddress);
    if (!piece || cbSize > piece->cbSize) {
        return {};
    }
    return PePiece{piece->nOffset, cbSize};
}

/* The entry of a directory of languages that the order asks for first, else the directory's first. */
std::optional<Entry> PickLanguage(File bytes, u32 ulDirectory, std::span<const u16> aLanguages)
{
    const u32 nEntries = EntryCount(bytes, ulDirectory);
    for (const u16 usLanguage : aLanguages) {
        for (u32 n = 0; n < nEntries; n++) {
            const Entry entry = EntryAt(bytes, ulDirectory, n);
            if (entry.ulName == usLanguage) {
                return entry;
            }
        }
    }
    return nEntries == 0 ? std::nullopt : std::optional(EntryAt(bytes, ulDirectory, 0));
}

} // namespace

int IsPeFile(File file)
{
    return U16At(file, 0) == DOS_SIGNATURE && U32At(file, U32At(file, 60)) == PE_SIGNATURE;
}

int IsWholePeImage(File file)
{
    const std::optional<PeHeaders> headers = ReadHeaders(file);
    if (!headers) {
        return 0;
    }
    const u16 usMagic = U16At(file, headers->ulOptional);
    if (usMagic != OPTIONAL_PE32 && usMagic != OPTIONAL_PE64) {
        return 0;
    }
    for (u64 n = 0; n < headers->usSections; n++) {
        const u64 ulHeader = headers->ulSections + n * SECTION_HEADER;
        const u32 cbStored = U32At(file, ulHeader + 16);
        if (cbStored != 0 && !Holds(file, U32At(file, ulHeader + 20), cbStored)) {
            return 0;
        }
    }
    return 1;
}

std::vector<u16> LanguageOrder(u16 usUserLanguage)
{
    return {0, usUserLanguage, static_cast<u16>(usUserLanguage & 0x03FF), ENGLISH_US};
}

int FindPeResource(File file, const PeName& type, const PeName& name, std::span<const u16> aLanguages,
                   PePiece* pPiece)
{
    const std::optional<ResourceTree> tree = OpenTree(file);
    if (!tree) {
        return 0;
    }
    const std::optional<u32> names = DirectoryBelow(tree->bytes, 0, type);
    if (!names) {
        return 0;
    }
    const std::optional<u32> languages = DirectoryBelow(tree->bytes, *names, name);
    if (!languages) {
        return 0;
    }
    const std::optional<Entry> entry = PickLanguage(tree->bytes, *languages, aLanguages);
    if (!entry) {
        return 0;
    }
    const std::optional<PePiece> piece = DataOf(*tree, *entry);
    if (!piece) {
        return 0;
    }
    *pPiece = *piece;
    return 1;
}

int FindPeString(File file, u16 usId, std::span<const u16> aLanguages, PeText* pText)
{
    PePiece block{};
    const u16 usBlock = static_cast<u16>(usId / 16 + 1);
    if (!FindPeResource(file, PeName(PE_STRING), PeName(usBlock), aLanguages, &block)) {
        return 0;
    }
    const File bytes = file.subspan(block.nOffset, block.cbSize);
    u64 ulOffset = 0;
    for (int n = 0; n < usId % 16; n++) {
        ulOffset += u64{2} + u64{U16At(bytes, ulOffset)} * 2;
    }
    const u16 cch = U16At(bytes, ulOffset);
    if (!Holds(bytes, ulOffset, u64{2} + u64{cch} * 2)) {
        return 0;
    }
    *pText = {block.nOffset + ulOffset + 2, cch};
    return 1;
}

std::vector<PeResource> ListPeResources(File file, int nLimit)
{
    std::vector<PeResource> list;
    const std::optional<ResourceTree> tree = OpenTree(file);
    if (!tree) {
        return list;
    }
    /* Calls take(entry, name) for each named entry of a directory until the limit is used up. */
    const auto forEach = [&](u32 ulDirectory, auto take) {
        const u32 nEntries = EntryCount(tree->bytes, ulDirectory);
        for (u32 n = 0; n < nEntries && nLimit > 0; n++) {
            nLimit--;
            const Entry entry = EntryAt(tree->bytes, ulDirectory, n);
            if (const std::optional<PeName> name = NameOf(tree->bytes, entry)) {
                take(entry, *name);
            }
        }
    };
    forEach(0, [&](const Entry& types, const PeName& type) {
        if (!types.bDirectory) {
            return;
        }
        forEach(types.ulBelow, [&](const Entry& names, const PeName& name) {
            if (!names.bDirectory) {
                return;
            }
            forEach(names.ulBelow, [&](const Entry& language, const PeName& id) {
                if (const std::optional<PePiece> data = DataOf(*tree, language)) {
                    list.push_back({type, name, id.usId, *data});
                }
            });
        });
    });
    return list;
}
