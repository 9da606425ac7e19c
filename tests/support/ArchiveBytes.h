// Archives over bytes in memory.
#pragma once

#include <afx.h>

#include <utility>

#include "tests/support/Bytes.h"

inline Bytes contentsOf(CMemFile& file) {
    const ULONGLONG position = file.GetPosition();
    Bytes bytes(file.GetLength());
    file.SeekToBegin();
    file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    file.Seek(static_cast<LONGLONG>(position), CFile::begin);
    return bytes;
}

// The bytes that `write` puts into an archive.
template <class Write>
Bytes stored(Write write) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    write(ar);
    ar.Close();
    return contentsOf(file);
}

// A loading archive over bytes of its own.
class Loading {
  public:
    explicit Loading(Bytes bytes)
        : m_bytes(std::move(bytes)),
          m_file(m_bytes.data(), static_cast<UINT>(m_bytes.size())),
          m_archive(&m_file, CArchive::load) {}
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;

  private:
    Bytes m_bytes;
    CMemFile m_file;
    CArchive m_archive;

  public:
    CArchive& ar = m_archive;
};
