// What the two roads from the wire end in. User-interface thread.
#pragma once

#include "foundation/Stream.h"

class MainFrame;

/// Makes INPUT plugin number `plugin` the one that is remembered and decodes `stream` with it.
/// Tells a plugin that does not load. No plugin is loaded afterwards.
void LoadFromWire(MainFrame& frame, Stream* stream, i32 plugin);
