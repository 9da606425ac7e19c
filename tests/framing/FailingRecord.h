// Records that cannot be archived.
#pragma once

#include <afx.h>

#include "NyServer/records/NySeUser.h"

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

// A user that fails in the same way.
class FailingUser : public NySeUser {
  public:
    explicit FailingUser(Failure failure) : m_failing(failure) {}
    void Serialize(CArchive& ar) override { m_failing.Serialize(ar); }

  private:
    FailingRecord m_failing;
};
