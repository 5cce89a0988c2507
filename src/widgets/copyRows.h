#pragma once

class QAbstractItemView;

/// Has Ctrl+C in a list or a tree copy what the selected rows say to a screen reader, a line each: rows that are drawn
/// by widgets have no text of their own that Qt would copy. GUI thread only.
void offerCopyOfRows(QAbstractItemView* view);
