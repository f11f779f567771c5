#pragma once

#include "loglines.h"
#include "recorder.h"
#include "registerRecord.h"

#include <functional>
#include <string>
#include <variant>
#include <vector>

/// What can be seen of the CAM manager from outside, in the one order in which it happens.
namespace CamEvents {

/// A plug-in's factory is entered. What it was given otherwise and what it makes follows as a FactoryCall.
struct FactoryEntry
{
    QString library;
    QWidget *parent;
};

struct Box
{
    QString title;
    QString text;
    bool hasParent;
};

/// An operation returns, perhaps one that a plug-in has called.
struct Result
{
    void *value;
};

/// Something thrown reaches the caller of the outermost operation.
struct Exception
{
    std::string what;
};

/// The registry as a plug-in finds it when it is called, or the caller in the end.
using Records = std::vector<RegisterRecord>;

}

using CamEvent =
    std::variant<CamEvents::FactoryEntry, Recorder::FactoryCall, Recorder::Delivery, LogLines::Line,
                 CamEvents::Box, CamEvents::Result, CamEvents::Exception, CamEvents::Records>;

bool isSame(const CamEvent &left, const CamEvent &right);

/// How texts and bytes are shown: in quotes, what is not printable ASCII by its number.
QString quoted(const QString &text);
QString quoted(const std::string &bytes);
QString shown(const PluginMetaData &message);
/// `nameOf` tells objects apart.
QString shown(const CamEvent &event, const std::function<QString(const void *)> &nameOf);
