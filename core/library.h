#pragma once

#include "core/export.h"

extern "C" {

// The library needs no set-up or tear-down call; these are kept for hosts that make them.
QUILLON_API void QuillonInitialize();
QUILLON_API void QuillonTerminate();
// A symbol a host may reference so that its linker keeps the library among its dependencies.
QUILLON_API void __localFnToKeepQuillonDllLoaded();

// 0: the kind of module; 1: the version text; anything else: a one-line record of the version
// and of the machine, date and time of the build.
QUILLON_API const char* Quillon_get_module_info(int which);

}  // extern "C"

namespace quillon {

// Makes the loaded library unloadable for the rest of the process. Done once at load; further
// calls do no harm. False when the library could not be found or marked.
QUILLON_API bool PinLibrary();

// Writes the unload warning when the process is not ending and the warning is enabled
// (CkIsDLLUnloadWarningEnabled); true when it wrote.
QUILLON_API bool UnloadWarning(bool processEnding);

}  // namespace quillon
