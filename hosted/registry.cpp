/* Stand-ins for the registry: keys and values in memory. */
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "hosted/standin.h"

namespace {

struct Value {
    DWORD dwType;
    Bytes bytes;
};

using Key = std::map<WideText, Value>; /* values by name in one form */

struct Registry {
    std::map<WideText, Key> keys; /* paths in one form, without a backslash at the end */
    std::map<HKEY, WideText> open;
    std::vector<std::unique_ptr<char>> handles;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

WideText KeyForm(std::u16string_view wcPath)
{
    while (!wcPath.empty() && wcPath.back() == u'\\') {
        wcPath.remove_suffix(1);
    }
    return LowerText(wcPath);
}

bool RootOf(HKEY hKey, WideText* pPath)
{
    if (hKey == HKEY_LOCAL_MACHINE || hKey == HKEY_CURRENT_USER) {
        *pPath = hKey == HKEY_LOCAL_MACHINE ? u"hklm" : u"hkcu";
        return true;
    }
    auto found = registry().open.find(hKey);
    if (found == registry().open.end()) {
        return false;
    }
    *pPath = found->second;
    return true;
}

} // namespace

void ResetRegistry()
{
    registry() = Registry();
    liveCounts.nKeys = 0;
}

void AddKey(std::u16string_view wcPath)
{
    registry().keys[KeyForm(wcPath)];
}

void SetKeyValue(std::u16string_view wcPath, const MachineValue& value)
{
    registry().keys[KeyForm(wcPath)][LowerText(value.wcName)] = {value.dwType, value.bytes};
}

std::vector<WideText> KeyPaths()
{
    std::vector<WideText> paths;
    for (const auto& [wcPath, key] : registry().keys) {
        paths.push_back(wcPath);
    }
    return paths;
}

std::vector<MachineValue> KeyValues(std::u16string_view wcPath)
{
    std::vector<MachineValue> values;
    for (const auto& [wcName, value] : registry().keys[KeyForm(wcPath)]) {
        values.push_back({wcName, value.dwType, value.bytes});
    }
    return values;
}

bool GetKeyValue(std::u16string_view wcPath, std::u16string_view wcValue, DWORD* pdwType, Bytes* pBytes)
{
    auto key = registry().keys.find(KeyForm(wcPath));
    if (key == registry().keys.end()) {
        return false;
    }
    auto value = key->second.find(LowerText(wcValue));
    if (value == key->second.end()) {
        return false;
    }
    *pdwType = value->second.dwType;
    *pBytes = value->second.bytes;
    return true;
}

void SetKeyValue(std::u16string_view wcPath, std::u16string_view wcValue, DWORD dwType, const Bytes& bytes)
{
    registry().keys[KeyForm(wcPath)][LowerText(wcValue)] = {dwType, bytes};
}

void DropKey(std::u16string_view wcPath)
{
    registry().keys.erase(KeyForm(wcPath));
}

namespace {

/* A key is there when it or one below it was made. */
bool IsKey(const WideText& wcForm)
{
    auto found = registry().keys.lower_bound(wcForm);
    return found != registry().keys.end() &&
           (found->first == wcForm || found->first.compare(0, wcForm.size() + 1, wcForm + u'\\') == 0);
}

/* The full form of a path below an open key; false when that is none. Classes are the user's before the machine's. */
bool FullForm(HKEY hParent, LPCWSTR wcPath, WideText* pForm)
{
    WideText wcFull;
    if (hParent == HKEY_CLASSES_ROOT) {
        const WideText wcClass = WideText(u"\\software\\classes\\") + (wcPath ? wcPath : u"");
        *pForm = KeyForm(u"hkcu" + wcClass);
        *pForm = IsKey(*pForm) ? *pForm : KeyForm(u"hklm" + wcClass);
        return true;
    }
    if (!RootOf(hParent, &wcFull)) {
        return false;
    }
    wcFull += u'\\';
    wcFull += wcPath ? wcPath : u"";
    *pForm = KeyForm(wcFull);
    return true;
}

LSTATUS KeepKey(const WideText& wcForm, PHKEY phKey)
{
    registry().handles.push_back(std::make_unique<char>());
    *phKey = reinterpret_cast<HKEY>(registry().handles.back().get());
    registry().open[*phKey] = wcForm;
    liveCounts.nKeys++;
    return 0;
}

} // namespace

LSTATUS WINAPI RegOpenKeyExW(HKEY hParent, LPCWSTR wcPath, DWORD, REGSAM, PHKEY phKey)
{
    FAILS(RegOpenKeyExW);
    WideText wcForm;
    if (!FullForm(hParent, wcPath, &wcForm)) {
        return static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
    }
    return IsKey(wcForm) ? KeepKey(wcForm, phKey) : static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND);
}

LSTATUS WINAPI RegCreateKeyW(HKEY hParent, LPCWSTR wcPath, PHKEY phKey)
{
    FAILS(RegCreateKeyW);
    WideText wcForm;
    if (!FullForm(hParent, wcPath, &wcForm)) {
        return static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
    }
    registry().keys[wcForm];
    return KeepKey(wcForm, phKey);
}

LSTATUS WINAPI RegQueryValueExW(HKEY hKey, LPCWSTR wcValue, LPDWORD, LPDWORD pdwType, LPBYTE pOut,
                                LPDWORD pcb)
{
    FAILS(RegQueryValueExW);
    WideText wcPath;
    if (!RootOf(hKey, &wcPath)) {
        return static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
    }
    const Key& key = registry().keys[wcPath];
    auto value = key.find(LowerText(wcValue ? wcValue : u""));
    if (value == key.end()) {
        return static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND);
    }
    DWORD cbRoom = pcb ? *pcb : 0;
    const Bytes& bytes = value->second.bytes;
    if (pdwType) {
        *pdwType = value->second.dwType + (Lies(CALL_RegQueryValueExW, LIE_TYPE) ? 1 : 0);
    }
    if (pcb && Lies(CALL_RegQueryValueExW, LIE_GROWS)) {
        *pcb = cbRoom + 64;
        return pOut ? static_cast<LSTATUS>(ERROR_MORE_DATA) : 0;
    }
    if (pcb) {
        *pcb = Lies(CALL_RegQueryValueExW, LIE_HUGE) ? 0xFFFFFFF0 : static_cast<DWORD>(bytes.size());
    }
    if (!pOut) {
        return 0;
    }
    if (cbRoom < bytes.size()) {
        return static_cast<LSTATUS>(ERROR_MORE_DATA);
    }
    size_t cb = Lies(CALL_RegQueryValueExW, LIE_SHORT) ? bytes.size() / 2 : bytes.size();
    if (cb) {
        std::memcpy(pOut, bytes.data(), cb);
    }
    if (pcb && cb < bytes.size()) {
        *pcb = static_cast<DWORD>(cb);
    }
    return 0;
}

LSTATUS WINAPI RegSetValueExW(HKEY hKey, LPCWSTR wcValue, DWORD, DWORD dwType, const BYTE* pBytes,
                              DWORD cbBytes)
{
    FAILS(RegSetValueExW);
    WideText wcPath;
    if (!RootOf(hKey, &wcPath)) {
        return static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
    }
    registry().keys[wcPath][LowerText(wcValue ? wcValue : u"")] = {dwType, Bytes(pBytes, pBytes + cbBytes)};
    return 0;
}

LSTATUS WINAPI RegCloseKey(HKEY hKey)
{
    std::lock_guard held(machineLock);
    int bFails = CallFails(CALL_RegCloseKey);
    if (!registry().open.erase(hKey)) {
        return static_cast<LSTATUS>(ERROR_INVALID_HANDLE);
    }
    std::erase_if(registry().handles,
                  [hKey](const auto& handle) { return reinterpret_cast<HKEY>(handle.get()) == hKey; });
    liveCounts.nKeys--;
    return bFails ? static_cast<LSTATUS>(ERROR_GEN_FAILURE) : 0;
}
