/* The numbers of the device's interface that the program's resource scripts name: those that plugin
 * authors get too. */
#ifndef TAVRIX_RESOURCES_CONSTANTS_H
#define TAVRIX_RESOURCES_CONSTANTS_H

#include "kit/include/tavrix/resource.h"

#endif
