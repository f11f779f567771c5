// Feeds a fuzz target the files of the directories that are named, as libFuzzer does with -runs=0, for
// compilers without it.

#include "target.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>

#include <cstdio>

int main(int argc, char **argv)
{
    int count = 0;
    for (int index = 1; index < argc; ++index) {
        QDirIterator files(QString::fromLocal8Bit(argv[index]), QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
                return 1;
            }
            // Tells which one it was, should this be its end.
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            const QByteArray content = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.constData()),
                                   std::size_t(content.size()));
            ++count;
        }
    }
    std::printf("%d files\n", count);
    return count > 0 ? 0 : 1;
}
