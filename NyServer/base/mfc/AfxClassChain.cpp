#include "AfxClassChain.h"

#include <chrono>
#include <cstring>

// Constant-initialised: classes register from static constructors of every module.
constinit CRuntimeClass* AfxClassChain::applicationClasses = nullptr;
constinit AfxSharedModule* AfxClassChain::sharedModules = nullptr;
constinit CRuntimeClass* AfxClassChain::libraryClasses = nullptr;

namespace {

CRuntimeClass* findOnList(CRuntimeClass* first, LPCSTR className) {
    for (CRuntimeClass* current = first; current != nullptr; current = current->m_pNextClass) {
        if (std::strcmp(current->m_lpszClassName, className) == 0) return current;
    }
    return nullptr;
}

// Never destroyed: modules may be unloaded after this module's static objects are destroyed.
std::timed_mutex& mutex() {
    static auto* const chainMutex = new std::timed_mutex;
    return *chainMutex;
}

}  // namespace

AfxClassChain::Lock AfxClassChain::lock() {
    return Lock(mutex());
}

AfxClassChain::Lock AfxClassChain::lockForUnload() {
    return Lock(mutex(), std::chrono::seconds(1));
}

void AfxClassChain::registerClass(CRuntimeClass* newClass) {
    newClass->m_pNextClass = applicationClasses;
    applicationClasses = newClass;
}

CRuntimeClass* AfxClassChain::find(LPCSTR className) {
    CRuntimeClass* found = findOnList(applicationClasses, className);
    for (const AfxSharedModule* module = sharedModules; found == nullptr && module != nullptr;
         module = module->next) {
        found = findOnList(module->firstClass, className);
    }
    return found != nullptr ? found : findOnList(libraryClasses, className);
}

void AfxClassChain::publish(AfxSharedModule& module) {
    module.next = sharedModules;
    sharedModules = &module;
}

void AfxClassChain::withdraw(AfxSharedModule& module) {
    for (AfxSharedModule** place = &sharedModules; *place != nullptr; place = &(*place)->next) {
        if (*place != &module) continue;
        *place = module.next;
        return;
    }
}
