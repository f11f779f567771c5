#include "LibraryFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace PluginCheck;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const LibraryFile file = readLibrary(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    // What is no good is said to be so.
    if (file.format == LibraryFile::Format::None && file.problem == LibraryFile::Problem::None)
        std::abort();
    if (file.problem != LibraryFile::Problem::None && file.detail.isEmpty())
        std::abort();
    return 0;
}
