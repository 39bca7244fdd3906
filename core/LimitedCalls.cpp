#include "LimitedCalls.h"

#include "MacXUtils/TerminationSignals.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <unistd.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// As long as a user can be asked to wait for a disk that is gone.
constexpr milliseconds limit(5000);
/// Until a request to end is noticed.
constexpr milliseconds slice(50);

struct Answer {
    std::mutex mutex;
    std::condition_variable given;
    bool isGiven = false;
    int result = -1;
    int error = ETIMEDOUT;
};

/// The result of the call and its errno. `call` must own everything that it touches, since it may outlive the
/// caller.
std::pair<int, int> answerOf(const std::function<int()> &call)
{
    const auto answer = std::make_shared<Answer>();
    const auto look = [answer, call] {
        const int result = call();
        const int error = errno;
        const std::lock_guard lock(answer->mutex);
        answer->isGiven = true;
        answer->result = result;
        answer->error = error;
        answer->given.notify_one();
    };
    try {
        std::thread(look).detach();
    } catch (const std::system_error &) {
        const int result = call(); // the system has no thread left
        return {result, errno};
    }
    std::unique_lock lock(answer->mutex);
    const auto end = steady_clock::now() + limit;
    do {
        answer->given.wait_for(lock, slice, [&answer] { return answer->isGiven; });
    } while (!answer->isGiven && steady_clock::now() < end && !TerminationSignals::received());
    return {answer->result, answer->error};
}

int withinLimit(const std::function<int()> &call)
{
    // Set last of all: what is freed on the way may change it.
    const auto [result, error] = answerOf(call);
    errno = error;
    return result;
}

using StatusCall = int (*)(const char *, struct stat *);

int statusWithinLimit(StatusCall call, const std::string &path, struct stat &status)
{
    const auto found = std::make_shared<struct stat>();
    const int result = withinLimit([call, path, found] { return call(path.c_str(), found.get()); });
    if (result == 0)
        status = *found;
    return result;
}

} // namespace

int limited::access(const std::string &path, int mode)
{
    return withinLimit([=] { return ::access(path.c_str(), mode); });
}

int limited::chmod(const std::string &path, mode_t mode)
{
    return withinLimit([=] { return ::chmod(path.c_str(), mode); });
}

int limited::chown(const std::string &path, uid_t user, gid_t group)
{
    return withinLimit([=] { return ::chown(path.c_str(), user, group); });
}

int limited::lstat(const std::string &path, struct stat &status)
{
    return statusWithinLimit(::lstat, path, status);
}

int limited::mkdir(const std::string &path, mode_t mode)
{
    return withinLimit([=] { return ::mkdir(path.c_str(), mode); });
}

int limited::stat(const std::string &path, struct stat &status)
{
    return statusWithinLimit(::stat, path, status);
}

int limited::unlink(const std::string &path)
{
    return withinLimit([=] { return ::unlink(path.c_str()); });
}

bool limited::mountedDevice(const std::string &path, char (&name)[MountedDeviceNameSize])
{
    struct Name {
        char text[MountedDeviceNameSize] = "";
    };
    const auto found = std::make_shared<Name>();
    name[0] = '\0';
    const auto call = [path, found] { return ::mountedDevice(path.c_str(), found->text) ? 0 : -1; };
    if (withinLimit(call) != 0)
        return false;
    std::memcpy(name, found->text, sizeof name);
    return true;
}
