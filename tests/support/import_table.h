// Puts functions of the tests into the place of those that the library's DLLs import: what a program's own symbols do
// by themselves on Linux.
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <cstring>

namespace zoltest {

/// Where a function, or a non-virtual member function, begins.
template <typename Function>
void* addressOf(Function function) {
    void* address = nullptr;
    static_assert(sizeof function >= sizeof address);
    std::memcpy(&address, &function, sizeof address);
    return address;
}

/// Lets the module's calls of the imported function `from` go to `to`. False when the module does not import it.
inline bool redirectImport(HMODULE module, void* from, void* to) {
    auto* const base = reinterpret_cast<unsigned char*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    bool found = false;
    for (auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         library->FirstThunk != 0; ++library) {
        for (auto** entry = reinterpret_cast<void**>(base + library->FirstThunk); *entry != nullptr; ++entry) {
            if (*entry != from) continue;
            DWORD protection = 0;
            VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
            *entry = to;
            VirtualProtect(entry, sizeof *entry, protection, &protection);
            found = true;
        }
    }
    return found;
}

/// The same for all of the project's DLLs that draw or take memory. False when none of them imports `from`.
inline bool redirectLibraryImport(void* from, void* to) {
    bool found = false;
    for (const wchar_t* name : {L"zolwebcs.dll", L"zolwebmlang.dll"}) {
        HMODULE const module = GetModuleHandleW(name);
        if (module != nullptr && redirectImport(module, from, to)) found = true;
    }
    return found;
}

}  // namespace zoltest
