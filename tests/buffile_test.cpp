// The buffered writer: when it writes, what it answers, and how it closes.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "core/card.h"

namespace {

constexpr unsigned kAllBits = ~0u;

// A fresh file to write to, removed afterwards.
class TempFile {
public:
    TempFile()
    {
        handle = mkstemp(path);
        EXPECT_GE(handle, 0);
    }
    ~TempFile()
    {
        if (handle >= 0 && fcntl(handle, F_GETFD) != -1)
            ::close(handle);
        unlink(path);
    }
    long size() const
    {
        struct stat info {};
        stat(path, &info);
        return static_cast<long>(info.st_size);
    }
    std::string text() const
    {
        std::ifstream in(path, std::ios::binary);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }

    char path[64] = "/tmp/quillon_buffile_XXXXXX";
    int handle = -1;
};

bool isOpen(int handle)
{
    return fcntl(handle, F_GETFD) != -1;
}

TEST(BufFile, CreateStartsWithAnEmptyBufferOf8192Bytes)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    EXPECT_EQ(f->room, 8192u);
    EXPECT_EQ(f->next, f->buffer);
    EXPECT_EQ(sizeof f->buffer, 8192u);
    EXPECT_EQ(f->handle, file.handle);
    EXPECT_EQ(f->flush, &bufFileFlush);
    EXPECT_NE(f->close, nullptr);
    bufFileClose(f, 0);
}

TEST(BufFile, WriteOfZeroBytesAnswersZeroAndStoresNothing)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    EXPECT_EQ(bufFileWrite(f, "abc", 0), 0u);
    EXPECT_EQ(f->room, 8192u);
    EXPECT_EQ(bufFileClose(f, 0), 0u);
    EXPECT_EQ(file.size(), 0);
}

TEST(BufFile, BytesStayInTheBufferUntil8192AreStored)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    const std::string block(8191, 'a');
    EXPECT_EQ(bufFileWrite(f, block.data(), 8191), 8191u);
    EXPECT_EQ(file.size(), 0);
    EXPECT_EQ(f->room, 1u);
    EXPECT_EQ(bufFileWrite(f, "b", 1), 1u);
    EXPECT_EQ(file.size(), 8192);
    EXPECT_EQ(f->room, 8192u);
    EXPECT_EQ(f->next, f->buffer);
    bufFileClose(f, 1);
    EXPECT_EQ(file.text(), block + "b");
}

TEST(BufFile, LongWriteGoesOutInWholeBuffersAndTheRestAtClose)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += static_cast<char>('a' + i % 26);
    EXPECT_EQ(bufFileWrite(f, text.data(), static_cast<unsigned>(text.size())), 20000u);
    EXPECT_EQ(file.size(), 16384);
    EXPECT_EQ(bufFileClose(f, 1), 1u);
    EXPECT_EQ(file.text(), text);
}

TEST(BufFile, FlushStoresItsByteFirstAndAnswersIt)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    bufFileWrite(f, "ab", 2);
    EXPECT_EQ(bufFileFlush('c', f), static_cast<unsigned>('c'));
    EXPECT_EQ(file.text(), "abc");
    EXPECT_EQ(f->room, 8192u);
    bufFileClose(f, 0);
}

TEST(BufFile, FlushWithAllBitsSetStoresNoByte)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    bufFileWrite(f, "ab", 2);
    EXPECT_EQ(bufFileFlush(kAllBits, f), kAllBits);
    EXPECT_EQ(file.text(), "ab");
    bufFileClose(f, 0);
}

TEST(BufFile, CloseWithHandleWritesTheRestClosesAndAnswersOne)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    bufFileWrite(f, "tail", 4);
    EXPECT_EQ(bufFileClose(f, 1), 1u);
    EXPECT_FALSE(isOpen(file.handle));
    EXPECT_EQ(file.text(), "tail");
}

TEST(BufFile, CloseWithHandleAndNothingStoredStillAnswersOne)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    EXPECT_EQ(bufFileClose(f, 1), 1u);
    EXPECT_FALSE(isOpen(file.handle));
}

TEST(BufFile, CloseWithoutHandleKeepsItOpenAndAnswersTheFlush)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    bufFileWrite(f, "xy", 2);
    // The flush of what is left stores no byte, and so answers all bits set.
    EXPECT_EQ(bufFileClose(f, 0), kAllBits);
    EXPECT_TRUE(isOpen(file.handle));
    EXPECT_EQ(file.text(), "xy");
    EXPECT_EQ(::write(file.handle, "z", 1), 1);
    EXPECT_EQ(file.text(), "xyz");
}

TEST(BufFile, CloseWithoutHandleAndNothingStoredAnswersZero)
{
    TempFile file;
    _buffile* f = bufFileCreate(file.handle);
    EXPECT_EQ(bufFileClose(f, 0), 0u);
    EXPECT_TRUE(isOpen(file.handle));
}

TEST(BufFile, WriteToAnInvalidHandleAnswersAllBitsSetAtTheFlush)
{
    _buffile* f = bufFileCreate(-1);
    const std::string block(8191, 'a');
    EXPECT_EQ(bufFileWrite(f, block.data(), 8191), 8191u);
    EXPECT_EQ(bufFileWrite(f, "b", 1), kAllBits);
    bufFileWrite(f, "c", 1);
    EXPECT_EQ(bufFileFlush(kAllBits, f), kAllBits);
    EXPECT_EQ(bufFileClose(f, 0), 0u);
}

TEST(BufFile, WriteToAClosedHandleFails)
{
    TempFile file;
    ::close(file.handle);
    _buffile* f = bufFileCreate(file.handle);
    bufFileWrite(f, "abc", 3);
    EXPECT_EQ(bufFileFlush('d', f), kAllBits);
    bufFileClose(f, 0);
}

TEST(BufFile, WriteToAPipeWithoutReaderFails)
{
    struct sigaction ignore {}, previous {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, &previous);

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ::close(ends[0]);
    _buffile* f = bufFileCreate(ends[1]);
    const std::string block(10000, 'p');
    EXPECT_EQ(bufFileWrite(f, block.data(), 10000), kAllBits);
    // Closing the handle answers 1 even though the last flush failed too.
    EXPECT_EQ(bufFileClose(f, 1), 1u);

    sigaction(SIGPIPE, &previous, nullptr);
}

TEST(BufFile, MissingRecordOrDataIsRefused)
{
    EXPECT_EQ(bufFileWrite(nullptr, "a", 1), kAllBits);
    EXPECT_EQ(bufFileFlush('a', nullptr), kAllBits);
    EXPECT_EQ(bufFileClose(nullptr, 1), kAllBits);
    _buffile* f = bufFileCreate(-1);
    EXPECT_EQ(bufFileWrite(f, nullptr, 3), kAllBits);
    EXPECT_EQ(bufFileClose(f, 0), 0u);
}

} // namespace
