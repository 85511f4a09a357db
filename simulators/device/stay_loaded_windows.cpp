#include <windows.h>

// Pins the library until the process ends, because one of its threads may be inside a callback.
static const bool stayLoaded = [] {
    HMODULE self = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    return GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&stayLoaded), &self) != 0;
}();
