#pragma once

#include <string>
#include <vector>

/// What the steps with administrator rights share. Main thread only.

/// Obtains the rights if there is no reference yet. Returns false if they were refused, or declined earlier
/// within the same OneAnswer.
bool haveAuthority();

/// While one exists, a user who has declined isn't asked again.
class OneAnswer {
public:
    OneAnswer();
    OneAnswer(const OneAnswer &) = delete;
    ~OneAnswer();
};

/// Runs the tool with the rights. False when it can't be started.
bool runPrivileged(const char *tool, const std::vector<std::string> &arguments);

/// The same, but logs `failure`, filled with the arguments, when the tool can't be started.
bool runOrLog(const char *tool, const std::vector<std::string> &arguments, const char *failure);

/// `text` with its first %s replaced by the first word, and so on. It must have one for each word.
std::string filled(std::string text, const std::vector<std::string> &words);
