// A record that cannot be archived.
#pragma once

#include <afx.h>

enum class Failure { archive, file, memory };

// Writes one integer, 7, and throws.
class FailingRecord : public CObject {
    DECLARE_SERIAL(FailingRecord)
  public:
    explicit FailingRecord(Failure failure = Failure::archive) : m_failure(failure) {}
    void Serialize(CArchive& ar) override;

  private:
    Failure m_failure;
};
