/* The numbers of the device's interface that the program's resource scripts name: those that plugin
 * authors get too. */
#ifndef TAVRIX_RESOURCES_CONSTANTS_H
#define TAVRIX_RESOURCES_CONSTANTS_H

#include "kit/include/tavrix/resource.h"

#define SS_BITMAP 0xEL
#define SS_NOTIFY 0x100L

#define ES_MULTILINE 0x4L
#define ES_AUTOVSCROLL 0x40L
#define ES_READONLY 0x800L
#define ES_WANTRETURN 0x1000L

#define CBS_DROPDOWN 0x2L
#define CBS_AUTOHSCROLL 0x40L
#define CBS_SORT 0x100L

#define LBS_NOTIFY 0x1L

#define TVS_HASBUTTONS 0x1L
#define TVS_HASLINES 0x2L
#define TVS_LINESATROOT 0x4L
#define TVS_SHOWSELALWAYS 0x20L

#define LVS_REPORT 0x1L
#define LVS_SINGLESEL 0x4L
#define LVS_SHOWSELALWAYS 0x8L
#define LVS_NOSORTHEADER 0x8000L

#endif
