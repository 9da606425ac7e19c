// A file for archives that are to meet short reads and failing calls.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "tests/support/Bytes.h"

// A file without memory of its own to offer, which reads at most `step` bytes at a time.
class StreamFile : public CFile {
  public:
    explicit StreamFile(UINT step = UINT(-1), Bytes bytes = {})
        : m_step(step), m_bytes(std::move(bytes)) {}

    ULONGLONG GetPosition() const override { return m_position; }
    ULONGLONG Seek(LONGLONG offset, UINT from) override {
        if (from == current) offset += static_cast<LONGLONG>(m_position);
        if (from == end) offset += static_cast<LONGLONG>(m_bytes.size());
        return m_position = static_cast<size_t>(offset);
    }
    void SetLength(ULONGLONG length) override { m_bytes.resize(length); }
    ULONGLONG GetLength() const override { return m_bytes.size() + m_lie; }
    UINT Read(void* buffer, UINT count) override {
        if (m_failsIn-- == 0) AfxThrowFileException(CFileException::hardIO);
        const size_t left = m_bytes.size() - std::min(m_position, m_bytes.size());
        const UINT part = static_cast<UINT>(std::min<size_t>({left, count, m_step}));
        if (part > 0) std::memcpy(buffer, m_bytes.data() + m_position, part);
        m_position += part;
        return part;
    }
    void Write(const void* buffer, UINT count) override {
        if (m_failsIn-- == 0) AfxThrowFileException(CFileException::diskFull);
        ++m_writes;
        if (m_bytes.size() < m_position + count) m_bytes.resize(m_position + count);
        std::memcpy(m_bytes.data() + m_position, buffer, count);
        m_position += count;
    }
    void Abort() override {}
    void Flush() override {}
    void Close() override {}

    UINT m_step;
    Bytes m_bytes;
    size_t m_position = 0;
    ULONGLONG m_lie = 0;  // what GetLength adds
    int m_failsIn = -1;   // how many calls until one throws; negative: none does
    int m_writes = 0;
};
