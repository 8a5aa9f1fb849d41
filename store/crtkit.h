#pragma once

#include <cstdio>

#include "core/export.h"

// Thin checked wrappers around the C runtime. The source file and line arguments name the caller
// for diagnostics; this layer accepts them and stays quiet, since every caller already handles the
// failure result itself (a missing file is an ordinary answer of CkAccess, for instance).

// Kinds of console message. A plain message is written as it stands; the others get a prefix
// that tells the reader how serious it is.
enum _CkMessageType {
    CK_MESSAGE_PLAIN = 0,
    CK_MESSAGE_WARNING = 1,
    CK_MESSAGE_ERROR = 2,
};

// As fopen; a null path or mode gives null.
QUILLON_API FILE* CkFOpen(const char* path, const char* mode, const char* sourceFile, int line);
// As fclose; a null file gives EOF.
QUILLON_API int CkFClose(FILE* file, const char* sourceFile, int line);
// As access (mode 0: exists, 2: writable, 4: readable, 6: both); a null path gives -1.
QUILLON_API int CkAccess(const char* path, int mode, const char* sourceFile, int line);

// Whether a library should say so when it is unloaded while its host goes on running. Off unless
// the environment variable CK_DLL_UNLOAD_WARNING holds a value other than "" and "0".
QUILLON_API bool CkIsDLLUnloadWarningEnabled();

// Formats with vswprintf ("%s" takes a narrow char* text, "%ls" a wide one) and writes the result
// to standard error as UTF-8, straight to the file descriptor, so that the orientation of the
// stderr stream is never fixed by this call. A message is one line: a line feed is added when the
// text does not end with one.
QUILLON_API void CkWriteConsoleMessage(_CkMessageType type, const wchar_t* format, ...);
