// Exceptions inside a 32-bit DLL work beside a libgcc_s_dw2-1.dll of the host.
//
// The start-up code of the compiler registers the DLL's frame tables, by which an exception finds its handler. If
// libgcc_s_dw2-1.dll is in the process it registers them there, although the code that will look for them is linked
// into this DLL and has tables of its own. The first throw would then end the process. So the start-up code is told
// that there is no such library. In 64 bits the system itself keeps the tables.
#if defined(__i386__)
#include <windows.h>

namespace {

HMODULE WINAPI ModuleOf(const char* name) {
    if (name != nullptr && lstrcmpiA(name, "libgcc_s_dw2-1.dll") == 0) return nullptr;
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, name, &module);
    return module;
}

}  // namespace

// The linker finds this pointer in place of the one to the function of kernel32.
extern "C" {
extern HMODULE(WINAPI* const importedGetModuleHandle)(const char*) asm("__imp__GetModuleHandleA@4");
HMODULE(WINAPI* const importedGetModuleHandle)(const char*) = ModuleOf;
}
#endif
