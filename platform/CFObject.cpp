#include "CFObject.h"

const CFAllocatorRef kCFAllocatorDefault = nullptr;

void CFRelease(CFTypeRef object)
{
    const auto *released = static_cast<const CFObject *>(object);
    if (released->lifetime == CFObject::Owned)
        delete released;
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return static_cast<const CFObject *>(object)->type;
}
