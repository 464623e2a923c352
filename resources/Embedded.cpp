#include "resources/Embedded.h"

extern "C" const unsigned char TavrixResources[];
extern "C" const unsigned char TavrixResources_end[];

EmbeddedResources GetEmbeddedResources()
{
    return {TavrixResources, TavrixResources_end};
}
