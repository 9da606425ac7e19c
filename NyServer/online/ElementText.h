// Reads one element of an XML-like response. Portable. Not exported.
#pragma once

#include <afx.h>

// Returns what is between the first opening tag of `tag` and the closing tag that follows it; empty
// if either is missing. An opening tag without attributes is preferred, wherever it is. With
// attributes, these and the closing bracket are part of the result. Nested elements of the same
// name are not recognised.
CString elementText(const CString& text, const CString& tag);
