#pragma once

/// Makes wizard pages groups for assistive technology, with their titles as names. Qt calls them client
/// areas, which VoiceOver skips together with their title and text.
void installPageAccessibility();
