// The record base where it is installed; the operations that the library needs of it, declared and
// nothing more. See afx.h.
#pragma once

namespace QoSort {

enum CompareResult : int {};

}  // namespace QoSort
