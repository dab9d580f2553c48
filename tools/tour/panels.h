#pragma once

namespace busquill {

class CMainFrame;
class CTesselDoc;
class Tour;

// The panels of the menu Analyze beside the window of a capture.

/// The table of a capture's transactions below its listing.
void ShowTransactions(Tour& tour, CMainFrame& frame);
/// What the board has found in a capture, and the samples that fulfil an expression.
void ShowFindings(Tour& tour, CMainFrame& frame);
/// What lies between the markers: here a transaction, from its address to the next one, and the
/// edges of a line.
void ShowInterval(Tour& tour, CMainFrame& frame, CTesselDoc& capture);
/// Bookmarks in the waveforms, in the gauge and in the panel.
void ShowBookmarks(Tour& tour, CMainFrame& frame, CTesselDoc& capture);

} // namespace busquill
