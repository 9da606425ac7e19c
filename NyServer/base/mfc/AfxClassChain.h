// The order in which modules are searched for a class by name. Internal to the class library.
#pragma once

#include "CObject.h"

#include <mutex>

class CDynLinkLibrary;

// A module that shares its classes with all others.
struct AfxSharedModule {
    CRuntimeClass* firstClass = nullptr;  // newest first
    CDynLinkLibrary* library = nullptr;   // whose place in the chain this is
    AfxSharedModule* next = nullptr;
};

// Searched first is what the application has registered, then what modules have published, the
// newest first, then the class library's own. Modules are loaded and unloaded while other threads
// look up classes, hence the lock. Nobody calls the loader while holding it: the loader's own lock
// is already held when a module publishes its classes.
class AfxClassChain {
  public:
    // Guards everything below. Not annotated: it is returned by a function, and is not held after a
    // failed wait, which clang cannot follow.
    using Lock = std::unique_lock<std::timed_mutex>;
    static Lock lock();
    // For a module that is being unloaded: stops waiting after 1 s. The process may be ending, and
    // the thread that held the lock may have ended.
    static Lock lockForUnload();

    static void registerClass(CRuntimeClass* newClass);
    static CRuntimeClass* find(LPCSTR className);

    // Removes the classes for which `isOwn` is true from the application's. Returns their list,
    // newest first.
    template <class IsOwn>
    static CRuntimeClass* take(IsOwn isOwn) {
        CRuntimeClass* taken = nullptr;
        CRuntimeClass** takenEnd = &taken;
        for (CRuntimeClass** place = &applicationClasses; *place != nullptr;) {
            CRuntimeClass* const current = *place;
            if (!isOwn(current)) {
                place = &current->m_pNextClass;
                continue;
            }
            *place = current->m_pNextClass;
            current->m_pNextClass = nullptr;
            *takenEnd = current;
            takenEnd = &current->m_pNextClass;
        }
        return taken;
    }

    // The caller owns `module` and withdraws it before it is destroyed.
    static void publish(AfxSharedModule& module);
    // Has no effect on a module that is not published.
    static void withdraw(AfxSharedModule& module);
    static const AfxSharedModule* firstModule() { return sharedModules; }

    static void setLibraryClasses(CRuntimeClass* first) { libraryClasses = first; }

  private:
    static CRuntimeClass* applicationClasses;
    static AfxSharedModule* sharedModules;
    static CRuntimeClass* libraryClasses;
};
