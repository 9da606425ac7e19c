// The records of the golden bytes, made from their values.
#pragma once

#include <afx.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "tests/support/Golden.h"

// A record or table of the vector's class with the vector's value.
std::unique_ptr<CObject> makeGolden(const Golden& vector);

// As it is archived in the vector's form.
Bytes storeAs(const Golden& vector, CObject& record);

// What the bytes hold, read in the vector's form. Throws as the archive does.
std::unique_ptr<CObject> loadAs(const Golden& vector, const Bytes& bytes);

// All vectors that show a record or a table.
std::vector<Golden> goldenRecords();
