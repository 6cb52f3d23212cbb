/* The reader of resources in PE files, on any bytes. The seeds are small libraries with two bitmaps, a few
   strings in two languages and a version, as the resource compiler and the linker make them, and one of the
   32-bit form. */
#include "fuzz/require.h"
#include "hosted/pe_resources.h"

static void Inside(std::span<const u8> file, size_t nOffset, u64 cbSize)
{
    Require(nOffset <= file.size() && cbSize <= file.size() - nOffset);
}

extern "C" int LLVMFuzzerTestOneInput(const u8* pData, size_t cbData)
{
    const std::span<const u8> file(pData, cbData);
    for (const PeResource& resource : ListPeResources(file, 500)) {
        Inside(file, resource.data.nOffset, resource.data.cbSize);
        PePiece piece{};
        if (FindPeResource(file, resource.type, resource.name, LanguageOrder(resource.usLanguage), &piece)) {
            Inside(file, piece.nOffset, piece.cbSize);
        }
        if (resource.type == PeName(PE_STRING)) {
            for (u16 n = 0; n < 16; n++) {
                const u16 usId = static_cast<u16>((resource.name.usId - 1) * 16 + n);
                PeText text{};
                if (FindPeString(file, usId, LanguageOrder(resource.usLanguage), &text)) {
                    Inside(file, text.nOffset, u64{text.cch} * 2);
                }
            }
        }
    }
    Require(!IsWholePeImage(file) || IsPeFile(file));
    return 0;
}
