// A small buffered writer over a low-level file handle. Card files are
// written in one go at the end of an export, so one fixed buffer and a plain
// write() per 8192 bytes are all that is needed.

#include <unistd.h>

#include "core/card.h"

namespace {

constexpr unsigned kAllBits = ~0u;
constexpr unsigned kBufferSize = sizeof(_buffile::buffer);

// The `close` entry: writes out what is still stored, then closes the handle
// if asked. Closing answers 1 whatever the flush did; otherwise the answer is
// the flush's, which for the "store nothing" request is all bits set.
unsigned closeEntry(_buffile* f, int closeHandle)
{
    unsigned result = 0;
    if (f->next != f->buffer)
        result = f->flush(kAllBits, f);
    if (closeHandle) {
        ::close(f->handle);
        return 1;
    }
    return result;
}

} // namespace

_buffile* bufFileCreate(int handle)
{
    _buffile* f = new _buffile;
    f->next = f->buffer;
    f->room = kBufferSize;
    f->flush = bufFileFlush;
    f->close = closeEntry;
    f->handle = handle;
    return f;
}

unsigned bufFileWrite(_buffile* f, const void* data, unsigned length)
{
    if (length == 0)
        return 0;
    if (!f || !data)
        return kAllBits;
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    for (unsigned i = 0; i < length; ++i) {
        // The last free byte is filled by the flush itself, which then writes
        // the whole buffer: a write to the handle happens at 8192 bytes.
        if (f->room > 1) {
            *f->next++ = static_cast<char>(bytes[i]);
            --f->room;
        } else if (f->flush(bytes[i], f) == kAllBits) {
            // The file is incomplete from here on: the rest is not stored.
            return kAllBits;
        }
    }
    return length;
}

unsigned bufFileFlush(unsigned c, _buffile* f)
{
    if (!f)
        return kAllBits;
    if (c != kAllBits && f->room > 0) {
        *f->next++ = static_cast<char>(c);
        --f->room;
    }
    const size_t stored = static_cast<size_t>(f->next - f->buffer);
    const ssize_t written = ::write(f->handle, f->buffer, stored);
    f->next = f->buffer;
    f->room = kBufferSize;
    if (written < 0 || static_cast<size_t>(written) < stored)
        return kAllBits;
    return c;
}

unsigned bufFileClose(_buffile* f, int closeHandle)
{
    if (!f)
        return kAllBits;
    const unsigned result = f->close(f, closeHandle);
    delete f;
    return result;
}
