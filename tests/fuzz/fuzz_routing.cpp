// The CAM manager's public operations, with real plug-in libraries, do what the model says. The input is a
// sequence as CamWalk decodes it.

#include "camwalk.h"
#include "target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzTarget::prepare();
    static CamWalk &walk = *new CamWalk(FuzzTarget::takeLog);
    const QString difference =
        walk.walk(QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    FuzzTarget::takeDebugLines();
    FuzzTarget::require(difference.isEmpty(), difference);
    return 0;
}
