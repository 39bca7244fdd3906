#pragma once

/// From here on a wizard page is a group in the eyes of assistive technology. Qt makes it a client area,
/// which VoiceOver passes over with the title and the text that it carries.
void installPageAccessibility();
