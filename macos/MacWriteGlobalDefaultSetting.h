#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Authorization.h>

/// Sets `key` in the computer-wide preference domain `domain` to the UTF-8 string `value`, or deletes it when
/// `value` is null or empty, as the superuser. Returns true when the tool that does it was started; false
/// when `authorization` is null, when the domain isn't Mac Roman or too long (nothing is run then), or when
/// the start failed. Main thread only; blocks until the tool has ended.
bool MacWriteGlobalDefaultSetting(
    CFStringRef domain, const char *key, const char *value, AuthorizationRef authorization);
