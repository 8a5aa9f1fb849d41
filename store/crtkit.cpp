#include "store/crtkit.h"

#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

namespace {

const char* const kDllUnloadWarningVariable = "CK_DLL_UNLOAD_WARNING";

// vswprintf gives no size hint when the buffer is short, so the buffer grows in steps; a message
// beyond the last step (or one whose "%s" text the locale cannot decode) is written as far as it
// was formatted.
constexpr size_t kFirstMessageSize = 512;
constexpr size_t kLastMessageSize = 1 << 20;

// Encoded by hand, so that the console text is UTF-8 whatever locale the host has set.
void AppendUtf8(std::string& out, wchar_t character) {
    auto code = static_cast<unsigned long>(character);
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) code = 0xFFFD;
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

std::wstring FormatWide(const wchar_t* format, va_list arguments) {
    std::vector<wchar_t> buffer;
    for (size_t size = kFirstMessageSize;; size *= 4) {
        buffer.assign(size, L'\0');
        va_list attempt;
        va_copy(attempt, arguments);
        const int written = std::vswprintf(buffer.data(), size, format, attempt);
        va_end(attempt);
        if (written >= 0) return std::wstring(buffer.data(), static_cast<size_t>(written));
        if (size >= kLastMessageSize) break;
    }
    buffer.back() = L'\0';
    return std::wstring(buffer.data());
}

const char* PrefixOf(_CkMessageType type) {
    switch (type) {
        case CK_MESSAGE_WARNING: return "Warning: ";
        case CK_MESSAGE_ERROR: return "Error: ";
        default: return "";
    }
}

void WriteAll(int descriptor, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        done += static_cast<size_t>(written);
    }
}

}  // namespace

FILE* CkFOpen(const char* path, const char* mode, const char*, int) {
    if (path == nullptr || mode == nullptr) return nullptr;
    return std::fopen(path, mode);
}

int CkFClose(FILE* file, const char*, int) {
    if (file == nullptr) return EOF;
    return std::fclose(file);
}

int CkAccess(const char* path, int mode, const char*, int) {
    if (path == nullptr) return -1;
    return ::access(path, mode);
}

bool CkIsDLLUnloadWarningEnabled() {
    const char* value = std::getenv(kDllUnloadWarningVariable);
    return value != nullptr && value[0] != '\0' && std::strcmp(value, "0") != 0;
}

void CkWriteConsoleMessage(_CkMessageType type, const wchar_t* format, ...) {
    if (format == nullptr) return;
    va_list arguments;
    va_start(arguments, format);
    const std::wstring message = FormatWide(format, arguments);
    va_end(arguments);

    std::string text = PrefixOf(type);
    for (wchar_t character : message) AppendUtf8(text, character);
    if (text.empty() || text.back() != '\n') text += '\n';
    WriteAll(STDERR_FILENO, text);
}
