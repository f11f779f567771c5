#pragma once

#include "Frame.h"
#include "Places.h"

#include <functional>
#include <vector>

class QTpluginsManger4CAM;
struct QMetaObject;

/// An operation of the CAM manager that registers an element: which kind of frame it is for, and where in
/// that the host puts it.
struct ElementRegistration
{
    using Call = std::function<QObject *(QTpluginsManger4CAM *, QWidget *parent, const std::string &job)>;

    const char *operation;
    const char *library;
    const QMetaObject *elementType;
    Call call;
    FrameKind frame;
    Place place;
};

/// Every one there is, in the order in which windows are built.
std::vector<ElementRegistration> elementRegistrations();

/// An operation of the CAM manager that registers a frame.
struct FrameRegistration
{
    using Call = std::function<QWidget *(QTpluginsManger4CAM *, QWidget *parent, const std::string &job,
                                         const std::string &step)>;

    const char *operation;
    const char *library;
    Call call;
};

/// The one for this kind of frame. Only frames that belong to the root are found by pluginTransmitData(), so
/// the graphic frames' is not the one for hosts without a root; previews, which nobody writes to, have that.
/// A DFM frame belongs to the root when it stands beside the job's first one.
FrameRegistration frameRegistration(FrameKind kind, bool belongsToRoot = true);

/// Whether an element for graphic frames is in previews, too.
bool isInPreview(const ElementRegistration &registration);
