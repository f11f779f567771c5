#pragma once

#include "pluginManger4CAM.h"

#include <QtCore/QHash>

#include <vector>

class QLibrary;
class QWidget;

namespace Bench {

/// The CAM manager with its set of libraries loaded and its registry filled, and beside it what floors work
/// on: a table of the same libraries, and records equal to those in the registry, in its order.
struct Workbench
{
    static constexpr int updatedFrames = 50;
    static constexpr int elementsPerUpdatedFrame = 10;

    /// Loads the set.
    Workbench();

    /// Fills the registry up to `count` records: roots, a frame of each kind, and a view in each.
    void fill(int count);

    /// Adds graphic frames of the job "updated", each with elements of other names before a view.
    void addFramesToUpdate();

    QTpluginsManger4CAM *const manager = QTpluginsManger4CAM::instance();
    QWidget *const root;
    QHash<QString, QLibrary *> libraries;
    std::vector<RegisterRecord> records;

    /// The graphic frame that messages are sent from and to.
    QWidget *frame = nullptr;
};

}
