#pragma once

#include <string>

#include <windows.h>

namespace support {

inline constexpr wchar_t boardKey[] = L"HARDWARE\\DESCRIPTION\\System\\BIOS";
inline constexpr wchar_t versionKey[] = L"HARDWARE\\DESCRIPTION\\System";
inline constexpr wchar_t boardValue[] = L"BaseBoardProduct";
inline constexpr wchar_t versionValue[] = L"SystemBiosVersion";

/** Writes a value with exactly these bytes below HKEY_LOCAL_MACHINE; ends the program on failure.
 *  The key is made if need be, and is gone when the system starts anew. */
void writeValue(const wchar_t *key, const wchar_t *value, DWORD type, const std::wstring &text,
    bool withZero = true);
void removeValue(const wchar_t *key, const wchar_t *value);

/** In this process HKEY_LOCAL_MACHINE is an empty place of its own while the object lives. */
class OwnRegistry
{
public:
    OwnRegistry();
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry &) = delete;
    OwnRegistry &operator=(const OwnRegistry &) = delete;

private:
    std::wstring place;
};

} // namespace support
