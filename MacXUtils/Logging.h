#pragma once

/// The installer's optional diagnostic log. It stays closed unless a preference names a log file; every call
/// is allowed while it is closed. Main thread only.

/// Opens the log when the preference "<tag>_LogLocation" of the domain "com.brindle.Corvane" names a file,
/// where the tag is the executable's name without blanks and apostrophes. Returns true when the log is open
/// or opening it was tried, false when logging stays off. A second call after a success changes nothing.
bool ShouldStartMacLogging();

/// Opens `path` for appending as the log, with `tag`, cut to 128 bytes, before every line, and writes the
/// start lines. Does nothing when an argument is null or empty, or when the log is open already; a failure
/// isn't reported.
void OpenMacLogWithBanner(const char *path, const char *tag);

/// Appends "[tag pid]date: message" to the log if it is open. The message carries its own line end and is cut
/// to 8191 bytes.
void log_msg(const char *format, ...) __attribute__((format(printf, 1, 2)));

/// Writes the local time as asctime does, but without the line end, to `buffer` of at least 26 bytes; on
/// failure an empty string.
void log_datestr(char *buffer);
