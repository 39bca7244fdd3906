#pragma once

#include "CFObject.h"

#include <QString>

struct __CFString : CFObject {
    explicit __CFString(const QString &text, Lifetime stringLifetime = Owned)
        : CFObject(String, stringLifetime)
        , characters(text)
    {
    }

    const QString characters;
};
