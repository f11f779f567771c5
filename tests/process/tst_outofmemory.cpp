#include "pluginManger4CAM.h"
#include "testmain.h"

#include <cstdlib>
#include <new>

using LogLines::Line;

namespace {

/// How many allocations succeed before one fails; negative: all do, as they do again after the failure, so
/// that it can be logged.
thread_local int allocationsLeft = -1;

}

// These stand in for the whole process's, the library included.

void *operator new(std::size_t size)
{
    if (allocationsLeft >= 0 && allocationsLeft-- == 0)
        throw std::bad_alloc();
    if (void *const memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

class tst_OutOfMemory : public QObject
{
    Q_OBJECT

private slots:
    void insertRootLeavesTheRegistryAsItWas();
};

void tst_OutOfMemory::insertRootLeavesTheRegistryAsItWas()
{
    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    const std::string longName(1000, 'x');
    QObject root;

    int allowed = 0;
    for (;; ++allowed) {
        allocationsLeft = allowed;
        manager->insertRoot(longName, &root);
        allocationsLeft = -1;
        if (manager->getRoot())
            break;
        QVERIFY(!manager->getRoot());
        QCOMPARE(LogLines::take(), (QList<Line>{{'E', "pluginManger4CAM", "insertRoot error."}}));
    }
    QVERIFY(allowed > 0);
    QCOMPARE(manager->getRoot(), static_cast<void *>(&root));
    QCOMPARE(LogLines::take(), QList<Line>());
}

int main(int argc, char **argv)
{
    return runTest<tst_OutOfMemory>(argc, argv);
}

#include "tst_outofmemory.moc"
