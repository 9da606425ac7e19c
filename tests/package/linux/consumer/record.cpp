// Ends with 0 if the library knows the class of a user record by its name.
#include <afx.h>

int main() {
    return CRuntimeClass::FromName("NySeUser") ? 0 : 1;
}
