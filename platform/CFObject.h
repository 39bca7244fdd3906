#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// What every reference points at. There is no reference counting: whoever got an object from a Create or
/// Copy function owns it, and CFRelease deletes it. Constants are never deleted.
struct CFObject {
    enum Type : CFTypeID { String = 1, Url, Bundle, OtherValue };
    enum Lifetime { Owned, Constant };

    explicit CFObject(Type objectType, Lifetime objectLifetime = Owned)
        : type(objectType)
        , lifetime(objectLifetime)
    {
    }
    virtual ~CFObject() = default;
    CFObject(const CFObject &) = delete;
    CFObject &operator=(const CFObject &) = delete;

    const Type type;
    const Lifetime lifetime;
};
