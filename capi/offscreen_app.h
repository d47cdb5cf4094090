#pragma once
// Rendering measures text with QtGui, which needs a QGuiApplication. A C host has none,
// so the library starts one itself on the offscreen platform when the process has no
// Qt application at all.

// True when a QGuiApplication runs (the host's or the library's own) after the call.
bool ensureGuiApplication();
