// Identifiers of the texts that the test program and the modules have.
#pragma once

#define IDS_EVERYWHERE 52000
#define IDS_FIRST_MODULE 52001  // in the same block of the table as the one above
#define IDS_MODULES 52100
#define IDS_PATTERN 52101
#define IDS_NOWHERE 52200
