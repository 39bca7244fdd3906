#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// What every reference points at. Nothing here is retained, so an object has one owner, who got it from a
/// Create or Copy function and whose CFRelease deletes it; a constant has none.
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
