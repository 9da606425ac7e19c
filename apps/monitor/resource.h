// Numbers of the window's resources and controls.
#pragma once

#define IDR_MONITOR 1

// The order of the buttons.
#define ID_LOCK 101
#define ID_UNLOCK 102
#define ID_OPEN 103
#define ID_CLOSE 104
#define ID_SEND 105
#define ID_RENAME 106
#define ID_REFRESH 107
#define ID_FIND 108
#define ID_EXIT 109

#define IDC_FILTER 201
#define IDC_USERS 202
#define IDC_CONNECTIONS 203
#define IDC_LOCKS 204
#define IDC_LOG 205
#define IDC_STATUS 206

#define IDD_TEXT 301
#define IDD_LOCK 302
#define IDD_SEND 303
#define IDC_LABEL 310
#define IDC_TEXT 311
#define IDC_RECEIVER 312
#define IDC_ACCESS1 320
#define IDC_ACCESS2 321
#define IDC_EXCLUDE1 322
#define IDC_EXCLUDE2 323
