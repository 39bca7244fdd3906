#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// What every reference but the bundle's points at. There is no reference counting: whoever got an object
/// from a Create or Copy function owns it, and CFRelease deletes it.
struct CFObject {
    enum Type : CFTypeID { String = 1, Url, OtherValue };

    explicit CFObject(Type objectType)
        : type(objectType)
    {
    }
    virtual ~CFObject() = default;

    const Type type;
};
