#include <windows.h>

// Loaded once, the library stays to the end of the process: a thread of it may be inside a callback.
static const bool stayLoaded = [] {
    HMODULE self = nullptr;
    constexpr DWORD how = GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    return GetModuleHandleExW(how, reinterpret_cast<LPCWSTR>(&stayLoaded), &self) != 0;
}();
