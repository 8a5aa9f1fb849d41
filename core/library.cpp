#include "core/library.h"

#include <dlfcn.h>

#include <cstdlib>

#include "store/crtkit.h"

#ifndef QUILLON_BUILD_HOST
#define QUILLON_BUILD_HOST "unknown host"
#endif

namespace {

const char* const kModuleKind = "Dynamic linked library";
const char* const kVersionText = "24.0.0.000";
const char* const kVersionRecord =
    "Quillon version 24.0.0.000 (see README.md) built on " QUILLON_BUILD_HOST " " __DATE__ " " __TIME__;

// Set by a handler that the library registers with atexit at load. The C runtime binds such a
// handler to this library: on exit it runs before the library destructors, but on dlclose it runs
// only after them, so at destructor time the flag tells an exit from an early unload. That holds
// for a library loaded with dlopen; one loaded with the program registers its handler before the
// runtime's own and so sees it late, but such a library is never unloaded early, and is always
// found and pinned by its own path, which settles the question before the flag is asked.
bool g_exitUnderWay = false;
bool g_pinned = false;

void MarkExitUnderWay() { g_exitUnderWay = true; }

// An address inside this very library for dladdr. An exported function would not do: its name may
// be bound to another copy of the library that the process loaded earlier.
void AddressInsideLibrary() {}

}  // namespace

extern "C" {

void QuillonInitialize() {}
void QuillonTerminate() {}
void __localFnToKeepQuillonDllLoaded() {}

const char* Quillon_get_module_info(int which) {
    switch (which) {
        case 0: return kModuleKind;
        case 1: return kVersionText;
        default: return kVersionRecord;
    }
}

}  // extern "C"

namespace quillon {

bool PinLibrary() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&AddressInsideLibrary), &info) == 0 || info.dli_fname == nullptr)
        return false;
    // RTLD_NOLOAD finds the library that is already there and RTLD_NODELETE marks it for good; the
    // reference this takes is handed back at once, as the mark outlives it.
    void* handle = dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
    if (handle == nullptr) return false;
    dlclose(handle);
    return true;
}

bool UnloadWarning(bool processEnding) {
    if (processEnding || !CkIsDLLUnloadWarningEnabled()) return false;
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"'%s' dll is getting unloaded with application still running!",
                          "Quillon");
    return true;
}

}  // namespace quillon

namespace {

// Load and unload events of the library. Linux has no event for a thread attaching to a library,
// so the pinning runs once, at load; it would do no harm to run it again.
__attribute__((constructor)) void OnLibraryLoad() {
    g_pinned = quillon::PinLibrary();  // a failure leaves the library unpinned, nothing more
    std::atexit(MarkExitUnderWay);
}

// A pinned library is only unloaded when the process ends, and so is one whose exit handler ran.
__attribute__((destructor)) void OnLibraryUnload() { quillon::UnloadWarning(g_pinned || g_exitUnderWay); }

}  // namespace
