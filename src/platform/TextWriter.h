// Writing bank files as a text-mode stream does: every "\n" becomes CR LF on disk, also one
// inside a text value; nothing else is translated. Buffered; remembers the first error.
//
// The writers put a bank together piece by piece straight in the buffer: Write for texts that
// may hold a line feed, WriteVerbatim, WriteNumber and EndLine for the pieces that cannot, or
// Reserve and Commit around a run of such pieces. These are inline, as a save appends tens of
// short pieces for each of many machines.
#ifndef QZR_PLATFORM_TEXTWRITER_H
#define QZR_PLATFORM_TEXTWRITER_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CNumbers.h"
#include "platform/Env.h"

namespace qzr::platform {

class TextWriter {
  public:
    TextWriter(const std::string& path, WriteMode mode);
    ~TextWriter();  // closes, if Close() was not called
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    bool IsOpen() const;
    void Write(std::string_view text);
    // Bytes that hold no line feed, written as they stand.
    void WriteVerbatim(std::string_view bytes) {
        char* out = Room(bytes.size());
        std::memcpy(out, bytes.data(), bytes.size());
        m_used += bytes.size();
    }
    // A number written by one of the writers of platform/CNumbers.h, straight into the buffer.
    template <class Value>
    void WriteNumber(char* (*write)(Value, char*), Value value) {
        char* out = Room(kLongestNumber);
        m_used += static_cast<std::size_t>(write(value, out) - out);
    }
    // Room for size bytes at the end of the buffer, for a writer that puts pieces together
    // there with a pointer of its own and then hands the end of what it wrote to Commit.
    // The pieces hold no line feed (a line end goes in as CR LF).
    char* Reserve(std::size_t size) { return Room(size); }
    void Commit(const char* end) {
        m_used = static_cast<std::size_t>(end - reinterpret_cast<const char*>(m_buffer.data()));
    }
    // The line end on disk, as Write("\n") gives it.
    void EndLine() {
        char* out = Room(2);
        out[0] = '\r';
        out[1] = '\n';
        m_used += 2;
    }
    // Flushes and syncs to the medium; false if any write so far failed.
    bool Sync();
    // Flushes and closes; false if any write, the flush or the close failed. A second call
    // repeats the first one's answer. Writing after Close fails.
    bool Close();

  private:
    // Where the next size bytes go: the end of the buffer, which is written out first when
    // the bytes do not fit behind what it holds.
    char* Room(std::size_t size) {
        if (m_buffer.size() - m_used < size) {
            MakeRoom(size);
        }
        return reinterpret_cast<char*>(m_buffer.data()) + m_used;
    }
    void MakeRoom(std::size_t size);
    void MarkBufferFull();
    bool FlushBuffer();

    // A byte of the buffer. A new buffer is left uninitialised: every byte is written before
    // it goes out, and the buffer is large.
    struct Byte {
        Byte() {}
        char value;
    };

    std::unique_ptr<WritableFile> m_file;
    std::vector<Byte> m_buffer;  // bytes as they go to disk (line ends already CR LF)
    std::size_t m_used = 0;      // how many of m_buffer's bytes are in use
    bool m_failed = false;
};

}  // namespace qzr::platform

#endif  // QZR_PLATFORM_TEXTWRITER_H
