#pragma once

/// The two modal boxes that may come before a password dialog. Main thread only.

/// Shows a modal information box with one button. Both texts are read as Latin-1; the second may be null.
void installInfoDialog(const char *text, const char *informativeText = nullptr);

/// Tells users who can't administer the computer whose password will be asked for. False when they cancelled.
bool acceptsOtherAdministrator();
