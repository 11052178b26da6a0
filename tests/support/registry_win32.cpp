#include "tests/support/registry_win32.h"

#include <QtGlobal>

namespace support {

namespace {

void require(LSTATUS result)
{
    if (result != ERROR_SUCCESS)
        qFatal("registry: error %ld", long(result));
}

} // namespace

void writeValue(
    const wchar_t *key, const wchar_t *value, DWORD type, const std::wstring &text, bool withZero)
{
    HKEY opened = nullptr;
    require(RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, nullptr, REG_OPTION_VOLATILE, KEY_SET_VALUE,
        nullptr, &opened, nullptr));
    // The system takes a zero behind the data in, so there is something else if none is wanted.
    const std::wstring data = text + (withZero ? L'\0' : L'x');
    const auto size = (data.size() - (withZero ? 0 : 1)) * sizeof(wchar_t);
    require(RegSetValueExW(
        opened, value, 0, type, reinterpret_cast<const BYTE *>(data.data()), DWORD(size)));
    RegCloseKey(opened);
}

void removeValue(const wchar_t *key, const wchar_t *value)
{
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key, value);
}

OwnRegistry::OwnRegistry()
    : place(L"Software\\VornSettingsTest" + std::to_wstring(GetCurrentProcessId()))
{
    HKEY key = nullptr;
    require(RegCreateKeyExW(HKEY_CURRENT_USER, place.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
        KEY_ALL_ACCESS, nullptr, &key, nullptr));
    require(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key));
    RegCloseKey(key);
}

OwnRegistry::~OwnRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, place.c_str());
}

} // namespace support
