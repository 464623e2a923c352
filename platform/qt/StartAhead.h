// Work of the start that the toolkit would do one thing after the other, begun beside it: reading
// the system's font configuration takes as long as connecting to the display. Each thing is done
// once, by whoever comes first; where no thread can be had the toolkit does it in its own time.
#pragma once

namespace tavrix::platform
{

/// Begins to read the font configuration. On the user-interface thread, before the toolkit is up.
void ReadFontsAhead();

/// Returns when ReadFontsAhead() is done, at once where it was not called. Before the first use of
/// a font's measures: the toolkit would else read the configuration a second time meanwhile.
void WaitForFonts();

/// Begins to connect to the session's bus, which the toolkit's accessibility waits for when the
/// first window is shown; only where the toolkit does so. On the user-interface thread, when the
/// toolkit's application is there.
void ConnectBusAhead();

} // namespace tavrix::platform
