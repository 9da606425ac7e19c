// Identifiers of the module's resources; read by the resource compiler too. All modules of a
// process are searched for a text by its number, so do not change these, and keep to numbers from
// 41000 to 41999.
#pragma once

#define IDS_NYSERVER_NAME 41000         // the module's name, for titles
#define IDS_NYSERVER_DESCRIPTION 41001  // what the module is, in a line
#define IDS_NYSERVER_VERSION 41002      // "%s": a version number
