// The export macro of NyBaseDll.
#pragma once

// REQUIRES: NYBASE_EXPORTS while NyBaseDll itself is built, NYBASE_STATIC for one static program,
// and NYBASE_VISIBLE where libraries export by visibility; none of them for users of the DLL.
#if defined(NYBASE_EXPORTS) && defined(NYBASE_STATIC)
#error "Define NYBASE_EXPORTS (building the DLL) or NYBASE_STATIC (one static program), not both."
#elif defined(NYBASE_EXPORTS)
#define NYBASE_API __declspec(dllexport)
#elif defined(NYBASE_STATIC)
#define NYBASE_API
#elif defined(NYBASE_VISIBLE)
#define NYBASE_API __attribute__((visibility("default")))
#else
#define NYBASE_API __declspec(dllimport)
#endif
