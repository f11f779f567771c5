#pragma once

#include "MainWindow.h"

#include <functional>
#include <vector>

class QTpluginsManger4CAM;
struct QMetaObject;

/// One registration operation of the CAM manager, and where the host puts the element that it returns.
struct Registration
{
    const char *operation;
    const char *library;
    const QMetaObject *elementType;
    std::function<QObject *(QTpluginsManger4CAM *, QWidget *)> call;
    Place place;
};

/// Every registration operation there is, in the order in which the window is built.
std::vector<Registration> registrations(const std::string &jobName);
