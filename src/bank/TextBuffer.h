// TextBuffer: the text of a bank section or row, put together piece by piece in one buffer
// that grows as needed and is reused from one section to the next, before it goes to the
// TextWriter whole. Appending is a bounds check and a memcpy, inline: the writers append tens
// of short pieces per machine.
#ifndef QZR_BANK_TEXTBUFFER_H
#define QZR_BANK_TEXTBUFFER_H

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/CNumbers.h"

namespace qzr::bank {

class TextBuffer {
  public:
    void Clear() { m_size = 0; }

    void Append(std::string_view text) {
        Reserve(text.size());
        std::memcpy(m_data.data() + m_size, text.data(), text.size());
        m_size += text.size();
    }
    // A C text; null appends nothing.
    void AppendText(const char* text) {
        if (text != nullptr) {
            Append(std::string_view(text));
        }
    }
    void Append(char c) {
        Reserve(1);
        m_data[m_size++] = c;
    }

    // A number written by one of the writers of platform/CNumbers.h, straight into the buffer.
    template <class Value>
    void AppendNumber(char* (*write)(Value, char*), Value value) {
        Reserve(platform::kLongestNumber);
        m_size = static_cast<std::size_t>(write(value, m_data.data() + m_size) - m_data.data());
    }

    std::string_view View() const { return std::string_view(m_data.data(), m_size); }

  private:
    void Reserve(std::size_t more) {
        if (m_data.size() - m_size < more) {
            m_data.resize(2 * (m_size + more));
        }
    }

    std::vector<char> m_data;
    std::size_t m_size = 0;
};

}  // namespace qzr::bank

#endif  // QZR_BANK_TEXTBUFFER_H
