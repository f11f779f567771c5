#pragma once

#include "PluginMetaData.h"

#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

#ifdef RECORDER_LIBRARY
#    define RECORDER_EXPORT Q_DECL_EXPORT
#else
#    define RECORDER_EXPORT Q_DECL_IMPORT
#endif

class QWidget;

/// What the fixtures' plug-in libraries are asked to do, in the order in which it happened.
namespace Recorder {

struct FactoryCall
{
    QString library;
    QString symbol;
    QWidget *parent;
    QString text;
    void *element;
    QString job = {};
    QString step = {};
};

struct Delivery
{
    QString library;
    void *target;
    PluginMetaData message;
};

RECORDER_EXPORT void note(const FactoryCall &call);
RECORDER_EXPORT void note(const Delivery &delivery);

/// Return what was noted since the last call.
RECORDER_EXPORT QList<FactoryCall> takeFactoryCalls();
RECORDER_EXPORT QList<Delivery> takeDeliveries();

/// While this is set, the fixtures' factories return null.
RECORDER_EXPORT void setFactoriesReturnNull(bool returnNull);
RECORDER_EXPORT bool factoriesReturnNull();

/// While one is set, the fixtures' factories return it instead of making one of their own.
RECORDER_EXPORT void setSharedElement(void *element);
RECORDER_EXPORT void *sharedElement();

/// While this is set, the fixtures' entry points change every field of the message they were handed.
RECORDER_EXPORT void setMessagesAreSpoiled(bool spoiled);
RECORDER_EXPORT void spoil(PluginMetaData &message);

/// What a fixture does in its entry point after the delivery is noted; nothing by default.
RECORDER_EXPORT void setOnDelivery(std::function<void(const Delivery &)> action);

/// What a fixture does in its factory before it makes the element; nothing by default.
RECORDER_EXPORT void setOnFactory(std::function<void(const QString &library, QWidget *parent)> action);
RECORDER_EXPORT void enterFactory(const QString &library, QWidget *parent);

}
