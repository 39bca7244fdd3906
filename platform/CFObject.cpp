#include "CFObject.h"

const CFAllocatorRef kCFAllocatorDefault = nullptr;

void CFRelease(CFTypeRef object)
{
    delete static_cast<const CFObject *>(object);
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return static_cast<const CFObject *>(object)->type;
}
