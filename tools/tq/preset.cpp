/* The command `tq preset`. */
#include "tools/tq/preset.h"

#include <cstring>
#include <ostream>
#include <stdexcept>

#include "description/driver_files.h"
#include "document/defaults.h"
#include "hosted/standin.h"
#include "profile/profile_values.h"
#include "settingsfile/settings_keys.h"
#include "settingsfile/settings_reader.h"
#include "settingsfile/settings_writer.h"
#include "tools/save_file.h"
#include "tools/tq/explain.h"
#include "tools/tq/record.h"
#include "tools/tq/record_text.h"

namespace {

constexpr const WCHAR* tcPreset = TEXT("C:\\PRESET\\A.TQS");
constexpr u32 NAMES_CHARS = 0x40000;

/* The key of a field that the reader knows on these kinds; null for none. */
const SettingKey* KeyAt(unsigned nOffset, u8 bKinds)
{
    for (const KeyRows& run : aKeyRuns) {
        for (int i = 0; i < run.nKeys; i++) {
            const SettingKey& key = run.pKeys[i];
            if (key.bKindsRead & bKinds && nOffset >= key.usOffset &&
                (nOffset == key.usOffset || (key.bStride && (nOffset - key.usOffset) % key.bStride == 0 &&
                                             nOffset - key.usOffset < unsigned{key.bCount} * key.bStride))) {
                return &key;
            }
        }
    }
    return nullptr;
}

/* A field's text up to its NUL. */
WideText TextAt(const DriverDevmode& record, const SettingKey& key)
{
    WCHAR wcText[TEXT_CHARS] = {};
    std::memcpy(wcText, reinterpret_cast<const u8*>(&record) + key.usOffset,
                size_t{key.bCount} * sizeof(WCHAR));
    return wcText;
}

/* A printer of the model on a machine of its own, for as long as this lives. */
struct PresetPrinter {
    DriverDevmode factory;
    u16 usLanguage = 0;

    explicit PresetPrinter(const PresetOptions& options)
    {
        WideText wcName = StartModel(options.model, options.package, options.bMetric).wcName;
        OpenSample printer(wcName);
        PrinterCall call(printer.hPrinter);
        BuildDefaultRecord(call, wcName.data(), &factory, 0);
        const OwnedModel pModel = LoadPrinterModel(call);
        if (!pModel) {
            throw std::runtime_error(options.model + ": no description that can be read");
        }
        usLanguage = pModel->usLanguage;
    }
    ~PresetPrinter() { StopMachine(); }
    PresetPrinter(const PresetPrinter&) = delete;
    PresetPrinter& operator=(const PresetPrinter&) = delete;

    ProfileFile Open(const std::string& path) const
    {
        PutFile(tcPreset, ReadDiskFile(path));
        ProfileFile file = OpenProfile(tcPreset);
        if (file.state != PROFILE_READ) {
            throw std::runtime_error(path + ": more than 4 MB, which reads as empty");
        }
        return file;
    }
    /* The factory's record with the file's settings. Throws when the file is for another model. */
    DriverDevmode Apply(const std::string& path) const
    {
        DriverDevmode record = factory;
        if (!ReadPrinterSettings(Open(path), &record, 0, usLanguage)) {
            throw std::runtime_error(path + ": its key XPI names another description");
        }
        return record;
    }
    /* Fields whose bytes the settings of the record leave as they were. */
    std::vector<FieldValue> NotCarried(const DriverDevmode& record) const
    {
        DriverDevmode low = factory, high = factory;
        for (auto [pRecord, nFill] : {std::pair{&low, 0}, {&high, 0xFF}}) {
            std::memset(static_cast<void*>(pRecord), nFill, sizeof *pRecord);
            std::memcpy(pRecord->rPrivate.tcXPIName, factory.rPrivate.tcXPIName,
                        sizeof factory.rPrivate.tcXPIName);
        }
        PutFile(tcPreset, ""); /* makes its folder */
        if (!WritePrinterSettings(tcPreset, &record, usLanguage) ||
            !ReadPrinterSettings(OpenProfile(tcPreset), &low, 0, usLanguage) ||
            !ReadPrinterSettings(OpenProfile(tcPreset), &high, 0, usLanguage)) {
            throw std::runtime_error("the settings cannot be written");
        }
        std::vector<FieldValue> fields;
        for (const FieldValue& field : DifferingFields(low, high)) {
            const SettingKey* pKey = KeyAt(field.nOffset, KindOf(usLanguage));
            if (!pKey || pKey->form != KEY_TEXT || TextAt(low, *pKey) != TextAt(high, *pKey)) {
                fields.push_back(FieldOf(record, field.name));
            }
        }
        return fields;
    }
};

bool IsDigits(std::string_view text, const char* cDigits)
{
    return !text.empty() && text.find_first_not_of(cDigits) == text.npos;
}

bool IsNumber(std::string text, KeyForm form)
{
    if (form == KEY_HEX) {
        return IsDigits(text, "0123456789abcdefABCDEF");
    }
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        text.erase(0, 1);
    }
    return IsDigits(text, "0123456789");
}

/* Number behind a stem; -1 when the name is not that stem with one. */
int IndexBehind(const std::string& name, const WCHAR* wcStem)
{
    const std::string stem = Narrow(wcStem);
    const std::string rest = name.size() > stem.size() ? name.substr(stem.size()) : "";
    return SameName(Widen(name.substr(0, stem.size())), wcStem) && rest.size() < 4 &&
                   IsDigits(rest, "0123456789")
               ? std::stoi(rest)
               : -1;
}

struct FoundKey {
    const SettingKey* pKey; /* the last of that name, which is the one that counts */
    int nIndex;
};

FoundKey FindKey(const std::string& name, u8 SettingKey::*pKinds, u8 bKinds)
{
    FoundKey found = {nullptr, 0};
    for (const KeyRows& run : aKeyRuns) {
        for (int i = 0; i < run.nKeys; i++) {
            const SettingKey& key = run.pKeys[i];
            const bool bIndexed = key.bCount > 1 && key.form != KEY_TEXT;
            const int nIndex = bIndexed ? IndexBehind(name, key.wcKey) : 0;
            if (!(key.*pKinds & bKinds) || nIndex < 0 || nIndex >= (bIndexed ? key.bCount : 1) ||
                (!bIndexed && !SameName(Widen(name), key.wcKey))) {
                continue;
            }
            found = {&key, nIndex};
        }
    }
    return found;
}

/* Keys that the table of fields does not have: what decides about others, styles and blocks. */
enum KeyPlace { UNKNOWN, OF_ALL, OF_STYLES };
KeyPlace PlaceOf(const std::string& name)
{
    for (const char* cName : {"XPI", "WMType", "ColorMode", "InsertPageOffset"}) {
        if (SameName(Widen(name), Widen(cName))) {
            return OF_ALL;
        }
    }
    for (const char* cName : {"StyleCount", "BlockCount"}) {
        if (SameName(Widen(name), Widen(cName))) {
            return OF_STYLES;
        }
    }
    for (const WCHAR* wcStem : {u"StyleType", u"StyleUsage", u"StyleOverlayFile", u"StyleWMFileName",
                                u"BlockStyleIndex", u"BlockPageCount"}) {
        if (IndexBehind(name, wcStem) >= 0) {
            return OF_STYLES;
        }
    }
    for (const StyleKey& key : aStyleKeys) {
        if (IndexBehind(name, key.wcStem) >= 0) {
            return OF_STYLES;
        }
    }
    const size_t nDash = name.find('-');
    return nDash != name.npos && IsDigits(name.substr(nDash + 1), "0123456789") &&
                   IndexBehind(name.substr(0, nDash), u"BlockPage") >= 0
               ? OF_STYLES
               : UNKNOWN;
}

/* What is to be said of a key that has a place; empty: nothing. */
std::string SayOfField(const ProfileSection& section, const std::string& name, const std::string& value,
                       const FoundKey& found, const DriverDevmode& record)
{
    const SettingKey& key = *found.pKey;
    const WideText wcName = Widen(name);
    if (key.form == KEY_TEXT) {
        const std::string held = Narrow(TextAt(record, key));
        return held == value ? "" : "becomes \"" + held + "\"";
    }
    if (!IsNumber(value, key.form)) {
        return "is no number";
    }
    const i32 lHeld = GetKeyNumber(&record, key, found.nIndex);
    const i32 lSaid = key.form == KEY_HEX    ? static_cast<i32>(ReadProfileHex(section, wcName.c_str(), 0))
                      : key.form == KEY_LONG ? ReadProfileLong(section, wcName.c_str(), 0)
                                             : ReadProfileInt(section, wcName.c_str(), 0);
    const bool bBeyond =
        value.size() > 8 && (key.form == KEY_HEX || std::abs(std::stold(value)) > 2147483648.0L);
    return lHeld == lSaid && !bBeyond ? "" : "becomes " + std::to_string(lHeld);
}

std::string SayOf(const ProfileSection& section, const std::string& name, const std::string& value,
                  const DriverDevmode& record, u8 bKind)
{
    const FoundKey found = FindKey(name, &SettingKey::bKindsRead, bKind);
    const KeyPlace place = PlaceOf(name);
    if (found.pKey) {
        return SayOfField(section, name, value, found, record);
    }
    if (SameName(Widen(name), u"XPI")) {
        return "";
    }
    if (SameName(Widen(name), u"ColorMode")) {
        return value == "0" ? "" : "is not read"; /* the writer's own */
    }
    if (place == UNKNOWN && !FindKey(name, &SettingKey::bKindsRead, ON_ALL).pKey) {
        return "is unknown";
    }
    if (place == UNKNOWN) { /* the writer leaves some for other readers */
        return FindKey(name, &SettingKey::bKindsWritten, bKind).pKey ? "" : "is not read on this model";
    }
    if (place == OF_STYLES && bKind == ON_OTHERS) {
        return "is not read on this model";
    }
    const bool bText =
        IndexBehind(name, u"StyleOverlayFile") >= 0 || IndexBehind(name, u"StyleWMFileName") >= 0;
    return bText || IsNumber(value, SameName(Widen(name), u"WMType") ? KEY_HEX : KEY_INT) ? ""
                                                                                          : "is no number";
}

/* Lines on the keys of the section; how many there were. */
int CheckKeys(const ProfileSection& section, const DriverDevmode& record, u8 bKind, std::ostream& out)
{
    std::vector<WCHAR> names(NAMES_CHARS);
    int nSaid = 0;
    ListProfileKeys(section, names.data(), NAMES_CHARS);
    for (const WCHAR* wcName = names.data(); *wcName; wcName += WideLength(wcName) + 1) {
        WCHAR wcValue[PATH_CHARS] = {};
        ReadProfileText(section, wcName, wcValue, PATH_CHARS);
        const std::string name = Narrow(wcName), value = Narrow(wcValue);
        const std::string said = SayOf(section, name, value, record, bKind);
        if (!said.empty()) {
            out << name << "=" << value << ": " << said << "\n";
            nSaid++;
        }
    }
    return nSaid;
}

} // namespace

int RunPresetMake(const PresetOptions& options, std::ostream& out)
{
    const PresetPrinter printer(options);
    DriverDevmode record = options.record.empty() ? printer.factory : ReadRecordFile(options.record);
    std::memcpy(record.rPrivate.tcXPIName, printer.factory.rPrivate.tcXPIName,
                sizeof record.rPrivate.tcXPIName);
    for (const std::string& assignment : options.assignments) {
        SetRecordField(&record, assignment);
    }
    for (const FieldValue& field : printer.NotCarried(record)) {
        if (field.value != FieldOf(printer.factory, field.name).value) {
            out << "not carried: " << field.name << " " << field.value << "\n";
        }
    }
    const Bytes bytes = GetFile(tcPreset);
    SaveFile(options.file, bytes.data(), bytes.size());
    return 0;
}

int RunPresetCheck(const PresetOptions& options, std::ostream& out)
{
    DriverDevmode record;
    int nSaid;
    {
        const PresetPrinter printer(options);
        const ProfileFile file = printer.Open(options.file);
        const ProfileSection section = OpenSection(file, SETTINGS_SECTION);
        if (!section.nKeys) {
            out << "no settings: there is no section [PrinterSettings], or nothing in it\n";
            return 1;
        }
        record = printer.Apply(options.file);
        nSaid = CheckKeys(section, record, KindOf(printer.usLanguage), out);
    }
    return ExplainRecord(record, options.model, options.package, options.bMetric, out) || nSaid;
}

int RunPresetCompare(const PresetOptions& options, std::ostream& out)
{
    const PresetPrinter printer(options);
    const DriverDevmode first = printer.Apply(options.file), second = printer.Apply(options.other);
    std::vector<FieldValue> fields = DifferingFields(first, second);
    for (FieldValue& field : fields) {
        field.value = FieldOf(first, field.name).value + " -> " + field.value;
    }
    out << (fields.empty() ? "the settings are the same\n" : FieldLines(fields));
    return !fields.empty();
}

int RunPresetMissing(const PresetOptions& options, std::ostream& out)
{
    const PresetPrinter printer(options);
    std::vector<FieldValue> fields = printer.NotCarried(printer.factory);
    std::erase_if(fields,
                  [&](const FieldValue& field) { return KeyAt(field.nOffset, KindOf(printer.usLanguage)); });
    out << FieldLines(fields);
    return 0;
}
