#pragma once

#include "CFObject.h"

#include <QString>

struct __CFString : CFObject {
    explicit __CFString(const QString &text)
        : CFObject(String)
        , characters(text)
    {
    }

    const QString characters;
};
