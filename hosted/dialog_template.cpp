/* Reader of dialog templates, bounded by the resource's bytes. */
#include "hosted/dialog_template.h"

#include <utility>

namespace {

constexpr u32 STYLE_SETFONT = 0x40; /* DS_SETFONT */
constexpr u16 NUMBER_FOLLOWS = 0xFFFF;

/* Walks over the bytes. What lies behind the end reads as 0 and leaves the mark bShort. */
struct TemplateReader {
    std::span<const u8> bytes;
    size_t nOffset = 0;
    bool bShort = false;

    u8 Byte()
    {
        if (nOffset >= bytes.size()) {
            bShort = true;
            return 0;
        }
        return bytes[nOffset++];
    }

    u16 Half()
    {
        const u8 bLow = Byte();
        return static_cast<u16>(bLow | Byte() << 8);
    }

    u32 Word()
    {
        const u16 usLow = Half();
        return usLow | u32{Half()} << 16;
    }

    DialogRect Rect()
    {
        DialogRect rect{};
        for (i16* p : {&rect.x, &rect.y, &rect.cx, &rect.cy}) {
            *p = static_cast<i16>(Half());
        }
        return rect;
    }

    /* Characters up to a NUL, the first of them given. */
    std::u16string Text(u16 usFirst)
    {
        std::u16string wcText;
        for (u16 usChar = usFirst; usChar != 0 && !bShort; usChar = Half()) {
            wcText += static_cast<char16_t>(usChar);
        }
        return wcText;
    }

    PeName Name()
    {
        const u16 usFirst = Half();
        return usFirst == NUMBER_FOLLOWS ? PeName(Half()) : PeName(Text(usFirst));
    }

    void Skip(size_t cb)
    {
        bShort = bShort || cb > bytes.size() - nOffset;
        nOffset += bShort ? 0 : cb;
    }

    void Align() { Skip((4 - nOffset % 4) % 4); }
};

/* The number of a system class that a template calls by name, as "Static"; other names as they are. */
PeName NumberOfClass(PeName name)
{
    const std::pair<std::u16string_view, u16> aClasses[] = {
        {u"button", CLASS_BUTTON},   {u"edit", CLASS_EDIT},           {u"static", CLASS_STATIC},
        {u"listbox", CLASS_LISTBOX}, {u"scrollbar", CLASS_SCROLLBAR}, {u"combobox", CLASS_COMBOBOX}};
    std::u16string wcLower = name.wcName;
    for (char16_t& wcChar : wcLower) {
        wcChar = wcChar >= u'A' && wcChar <= u'Z' ? static_cast<char16_t>(wcChar + 32) : wcChar;
    }
    for (const auto& [wcClass, usNumber] : aClasses) {
        if (wcLower == wcClass) {
            return usNumber;
        }
    }
    return name;
}

DialogItem ReadItem(TemplateReader* pReader)
{
    DialogItem item{0, u16{0}, 0, 0, {}, u16{0}};
    pReader->Align();
    pReader->Skip(4);
    item.ulExStyle = pReader->Word();
    item.ulStyle = pReader->Word();
    item.rect = pReader->Rect();
    item.ulId = pReader->Word();
    item.windowClass = NumberOfClass(pReader->Name());
    item.text = pReader->Name();
    pReader->Skip(pReader->Half());
    return item;
}

} // namespace

int ReadDialogTemplate(std::span<const u8> bytes, DialogTemplate* pTemplate)
{
    TemplateReader reader{bytes};
    if (reader.Half() != 1 || reader.Half() != NUMBER_FOLLOWS) {
        return 0;
    }
    DialogTemplate read;
    reader.Skip(4);
    read.ulExStyle = reader.Word();
    read.ulStyle = reader.Word();
    const u16 nItems = reader.Half();
    read.rect = reader.Rect();
    read.menu = reader.Name();
    read.windowClass = reader.Name();
    read.wcTitle = reader.Text(reader.Half());
    if (read.ulStyle & STYLE_SETFONT) {
        read.font.usPoints = reader.Half();
        read.font.usWeight = reader.Half();
        read.font.bItalic = reader.Byte();
        read.font.bCharSet = reader.Byte();
        read.font.wcFace = reader.Text(reader.Half());
    }
    for (u16 n = 0; n < nItems && !reader.bShort; n++) {
        read.items.push_back(ReadItem(&reader));
    }
    if (reader.bShort) {
        return 0;
    }
    *pTemplate = std::move(read);
    return 1;
}
