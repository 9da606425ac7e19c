// What every header of the library shares: the export macro and the rules of the module's boundary.
//
//  1. No exception leaves an exported function that talks to a socket, a window or a file: failures
//     are return values. The archive operations of records and tables throw the class library's own
//     archive exceptions.
//  2. Objects made with new have one owner. A table deletes its records unless its delete-ownership
//     flag is cleared; finders return borrowed pointers.
//  3. A pointer argument may be null only where its comment says so.
//  4. Text is UTF-16 in CString. The socket layer's char text is in the active ANSI code page on
//     Windows; elsewhere host names are passed on as they are.
//  5. Every module of a process shares one C++ runtime, so memory and exceptions may cross between
//     modules.
#pragma once

#if defined(NYSERVER_EXPORTS) && defined(NYSERVER_STATIC)
#error \
    "Define NYSERVER_EXPORTS (building the DLL) or NYSERVER_STATIC (one static program), not both."
#elif defined(NYSERVER_EXPORTS)
#define NYSERVER_API __declspec(dllexport)
#elif defined(NYSERVER_STATIC)
#define NYSERVER_API
#elif defined(NYSERVER_VISIBLE)
#define NYSERVER_API __attribute__((visibility("default")))
#else
#define NYSERVER_API __declspec(dllimport)
#endif

// Exports a member that is defined in the header. GCC exports a class without its inline members.
#if defined(NYSERVER_EXPORTS) && defined(__GNUC__)
#define NYSERVER_INLINE __declspec(dllexport)
#else
#define NYSERVER_INLINE
#endif
