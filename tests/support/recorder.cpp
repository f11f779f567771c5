#include "recorder.h"

#include <utility>

namespace {

struct Notes
{
    QList<Recorder::FactoryCall> factoryCalls;
    QList<Recorder::Delivery> deliveries;
    bool factoriesReturnNull = false;
    void *sharedElement = nullptr;
    bool messagesAreSpoiled = false;
    std::function<void(const Recorder::Delivery &)> onDelivery;
    std::function<void(const QString &, QWidget *)> onFactory;
};

Notes &notes()
{
    static Notes instance;
    return instance;
}

}

void Recorder::note(const FactoryCall &call)
{
    notes().factoryCalls.append(call);
}

void Recorder::note(const Delivery &delivery)
{
    notes().deliveries.append(delivery);
    if (const auto action = notes().onDelivery)
        action(delivery);
}

QList<Recorder::FactoryCall> Recorder::takeFactoryCalls()
{
    return std::exchange(notes().factoryCalls, {});
}

QList<Recorder::Delivery> Recorder::takeDeliveries()
{
    return std::exchange(notes().deliveries, {});
}

void Recorder::setFactoriesReturnNull(bool returnNull)
{
    notes().factoriesReturnNull = returnNull;
}

bool Recorder::factoriesReturnNull()
{
    return notes().factoriesReturnNull;
}

void Recorder::setSharedElement(void *element)
{
    notes().sharedElement = element;
}

void *Recorder::sharedElement()
{
    return notes().sharedElement;
}

void Recorder::setMessagesAreSpoiled(bool spoiled)
{
    notes().messagesAreSpoiled = spoiled;
}

void Recorder::spoil(PluginMetaData &message)
{
    if (!notes().messagesAreSpoiled)
        return;
    for (QVariant &value : message.data)
        value = QStringLiteral("spoiled");
    message.data.insert(QStringLiteral("Spoiled"), true);
    message.src = message.dst = QStringLiteral("Spoiled.dll");
    message.type = -1;
    message.userData = 0;
}

void Recorder::setOnDelivery(std::function<void(const Delivery &)> action)
{
    notes().onDelivery = std::move(action);
}

void Recorder::setOnFactory(std::function<void(const QString &, QWidget *)> action)
{
    notes().onFactory = std::move(action);
}

void Recorder::enterFactory(const QString &library, QWidget *parent)
{
    if (const auto action = notes().onFactory)
        action(library, parent);
}
