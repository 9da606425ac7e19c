// The export macro of NyBaseDll.
#pragma once

// REQUIRES: NYBASE_EXPORTS while NyBaseDll itself is built, NYBASE_STATIC for one static program,
// neither for users.
#if defined(NYBASE_EXPORTS) && defined(NYBASE_STATIC)
#error "Define NYBASE_EXPORTS (building the DLL) or NYBASE_STATIC (one static program), not both."
#elif defined(NYBASE_EXPORTS)
#define NYBASE_API __declspec(dllexport)
#elif defined(NYBASE_STATIC)
#define NYBASE_API
#else
#define NYBASE_API __declspec(dllimport)
#endif
