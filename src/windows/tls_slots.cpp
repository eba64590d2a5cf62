// The slots for thread-local storage that a run-time library inside the DLL takes are given back when the DLL is
// unloaded. winpthreads takes one when it is loaded and never frees it; a process has 1088 of them, so it would end
// after some thousand loads.
//
// The linker finds the two pointers below in place of those to the functions of kernel32.
#include <atomic>

#include <windows.h>

namespace {

constexpr int kSlots = 16;
std::atomic<DWORD> taken[kSlots];  // the index plus 1, or 0

template <class Function>
Function* OfTheSystem(const char* name) {
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(kernel, name)));
}

void Replace(DWORD from, DWORD to) {
    for (std::atomic<DWORD>& slot : taken) {
        DWORD expected = from;
        if (slot.compare_exchange_strong(expected, to)) return;
    }
}

DWORD WINAPI TakeSlot() {
    const DWORD index = OfTheSystem<DWORD WINAPI()>("TlsAlloc")();
    if (index != TLS_OUT_OF_INDEXES) Replace(0, index + 1);
    return index;
}

BOOL WINAPI FreeSlot(DWORD index) {
    Replace(index + 1, 0);
    return OfTheSystem<BOOL WINAPI(DWORD)>("TlsFree")(index);
}

// The last of the functions that run at unload.
__attribute__((destructor(101))) void FreeAllSlots() {
    for (const std::atomic<DWORD>& slot : taken)
        if (const DWORD next = slot.load()) FreeSlot(next - 1);
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the names are the linker's.
#if defined(__i386__)
#define ORVANTH_IMPORT(name, bytes) asm("__imp__" name "@" bytes)
#else
#define ORVANTH_IMPORT(name, bytes) asm("__imp_" name)
#endif
extern "C" {
extern DWORD(WINAPI* const importedTlsAlloc)() ORVANTH_IMPORT("TlsAlloc", "0");
extern BOOL(WINAPI* const importedTlsFree)(DWORD) ORVANTH_IMPORT("TlsFree", "4");
DWORD(WINAPI* const importedTlsAlloc)() = TakeSlot;
BOOL(WINAPI* const importedTlsFree)(DWORD) = FreeSlot;
}
// NOLINTEND(readability-identifier-naming)
