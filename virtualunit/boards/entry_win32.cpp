#include <windows.h>

namespace {

/** What the boards take from the virtual unit, by the name that the compiler gives it: its get().
 */
constexpr char unitsProcedure[] =
    "_ZN11virtualunit3getERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEERS5_";

bool isUnitThere()
{
    const HMODULE device = GetModuleHandleW(L"VornAux2.dll");
    return device && GetProcAddress(device, unitsProcedure) != nullptr;
}

} // namespace

/** Refuses to be loaded beside another device library. Windows does so by itself; wine binds what
 * is missing to a procedure that ends the program. */
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID);
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    return reason != DLL_PROCESS_ATTACH || isUnitThere() ? TRUE : FALSE;
}
