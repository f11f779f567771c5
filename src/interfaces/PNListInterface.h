#pragma once

#include <QtCore/QObject>

class QWidget;

/**
 * The list of part numbers, implemented by the root object of "ListBar_PNList.dll".
 *
 * All calls come from the user-interface thread and must not throw.
 */
class PNListInterface
{
public:
    virtual ~PNListInterface() = default;

    /// Makes the list. The host places it in a window of its own, which then owns it. Called once.
    virtual QWidget *createList() = 0;
};

Q_DECLARE_INTERFACE(PNListInterface, "pluginManger.PNListInterface/1.0")
