// The class library's first header: objects, run-time classes, exceptions, strings, files and
// archives.
#pragma once

#include "afxplatform.h"

#include "CArchive.h"
#include "CException.h"
#include "CFile.h"
#include "CMemFile.h"
#include "CObject.h"
#include "CString.h"
