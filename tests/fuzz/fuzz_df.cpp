#include "computecontrol/DfProcess.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

// Whatever df says: a number that the destination page can reckon with, and none without a second line.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray output(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const qint64 megabytes = CDfProcess::availableMegabytes(output);
    constexpr qint64 limit = std::numeric_limits<qint64>::max() / 1024;
    if (megabytes > limit || megabytes < -limit || (megabytes != 0 && !output.contains('\n')))
        std::abort();
    return 0;
}
