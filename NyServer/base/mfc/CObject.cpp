#include "afxplatform.h"
