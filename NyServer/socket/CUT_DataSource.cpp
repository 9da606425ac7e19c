#include "NyServer/socket/CUT_DataSource.h"

#include <cctype>
#include <cstring>
#include <string>

#include "NyServer/base/port/Platform.h"

namespace {

constexpr size_t kWindow = 4095;

std::string upperCased(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// The part of the source that Find searches, as text: a zero byte ends it early.
class SearchWindow {
  public:
    SearchWindow(CUT_DataSource& source, const char* text, bool caseSensitive)
        : m_source(source),
          m_caseSensitive(caseSensitive),
          m_text(caseSensitive ? std::string(text) : upperCased(text)) {}

    bool moveTo(long position) {
        m_position = position;
        return m_source.Seek(position, FILE_BEGIN) != -1;
    }

    // Returns false if the source has no more bytes here than the text has.
    bool fill() {
        m_held = m_source.Read(m_bytes, kWindow);
        if (m_held <= textLength()) return false;
        m_bytes[m_held] = '\0';
        if (!m_caseSensitive) raiseCase();
        return true;
    }

    // Returns the position of the text in the source, or -1.
    long match() const {
        const char* found = std::strstr(m_bytes, m_text.c_str());
        return found ? m_position + static_cast<long>(found - m_bytes) : -1;
    }

    // Windows overlap by the length of the text, so that a match across their boundary is found.
    long nextPosition() const { return m_position + m_held - textLength(); }

  private:
    int textLength() const { return static_cast<int>(m_text.size()); }
    void raiseCase() {
        for (int i = 0; i < m_held; ++i)
            m_bytes[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(m_bytes[i])));
    }

    CUT_DataSource& m_source;
    bool m_caseSensitive;
    std::string m_text;
    long m_position = 0;
    int m_held = 0;
    char m_bytes[kWindow + 1];
};

bool searchable(const char* text, long maxSearch) {
    if (!text || !*text) return false;
    size_t length = std::strlen(text);
    return length <= kWindow && (maxSearch <= 0 || static_cast<size_t>(maxSearch) >= length);
}

}  // namespace

CUT_DataSource::~CUT_DataSource() = default;

long CUT_DataSource::Find(const char* text, long start, int caseSensitive, long maxSearch) {
    if (!searchable(text, maxSearch)) return -1;
    SearchWindow window(*this, text, caseSensitive != 0);
    if (!window.moveTo(start)) return -1;
    while (window.fill()) {
        long found = window.match();
        if (found != -1) return found;
        long next = window.nextPosition();
        if (!window.moveTo(next) || (maxSearch > 0 && next - start > maxSearch)) return -1;
    }
    return -1;
}
