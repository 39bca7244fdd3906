#pragma once

// The part of Core Foundation that the installer uses, with the types and values of macOS.

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef unsigned int UInt32;
typedef int OSStatus;

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;

typedef const void *CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFURL *CFURLRef;
typedef struct __CFBundle *CFBundleRef;

enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingUTF8 = 0x08000100,
};

typedef enum {
    kCFURLPOSIXPathStyle = 0,
} CFURLPathStyle;

extern const CFAllocatorRef kCFAllocatorDefault;

/// Releases an object from a Create or Copy function. Never pass anything else: null crashes on macOS.
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

/// The string constant of a literal; the same for the same text, and never to be released.
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
CFStringRef __CFStringMakeConstantString(const char *text);

CFTypeID CFStringGetTypeID(void);
/// Null when the bytes aren't valid in the encoding.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding);
/// In UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Writes the string and its NUL. False, with the buffer untouched, when it doesn't fit or has a character
/// that the encoding lacks.
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding);

/// Never to be released, as from any Get function.
CFBundleRef CFBundleGetMainBundle(void);
CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

/// The value of the key in the user's preferences of the application, else in the computer's; null when
/// neither has it. It can be of any type.
CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);

#ifdef __cplusplus
}
#endif
