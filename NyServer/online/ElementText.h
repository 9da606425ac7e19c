// The text of one element, cut out of an XML-like answer. Portable. Not exported.
#pragma once

#include <afx.h>

// What stands between the first opening tag of `tag` and the closing tag that follows it; empty
// when either is missing. An opening tag without attributes is looked for first, wherever it
// stands; of one with attributes, these and its closing bracket belong to the text. Elements of the
// same name inside are not told apart.
CString elementText(const CString& text, const CString& tag);
