#pragma once

#include <QtCore/QMap>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QVariant>

/**
 * The message that plug-ins and managers hand to each other.
 *
 * A plain value: it is passed by value, owns all its members, and a copy shares `data` until one side
 * modifies it. Safe to copy and to send between threads; one object must not be used by two threads at
 * once.
 */
struct PluginMetaData
{
    /// The sender. In CAM traffic its library file name, for example "Graphic_View.dll".
    QString src;

    /// The receiver. The CAM manager expects the library file name ("Graphic_View.dll"), the desktop
    /// manager the bare plug-in name ("File_Process").
    QString dst;

    /// The message code, chosen by the sender and interpreted by the receiver. It has no default value:
    /// every sender sets it. Two codes mean something to the CAM manager's `recMegToPlugin`: -1 is
    /// refused as invalid, 10000000 is delivered without a trace line.
    qint32 type;

    /// Named parameters, agreed between sender and receiver.
    QMap<QString, QVariant> data;

    /// An opaque word for the sender's own use. Nobody interprets or frees what it may point to.
    quintptr userData = 0;
};

static_assert(sizeof(PluginMetaData::userData) == 8, "the message record is laid out for 64-bit processes");

/**
 * Makes PluginMetaData a Qt meta-type, as Q_DECLARE_METATYPE does.
 *
 * Spelled out because the identity is declared as "class PluginMetaData", which plug-ins look up by that
 * name, while the record is a struct: the macro would name it with a mismatched tag, which compilers
 * warn about in every plug-in that includes this header.
 */
template <>
struct QMetaTypeId<PluginMetaData>
{
    enum { Defined = 1 };

    static int qt_metatype_id()
    {
        static QBasicAtomicInt metaTypeId = Q_BASIC_ATOMIC_INITIALIZER(0);
        if (const int id = metaTypeId.loadAcquire())
            return id;
        const int id = qRegisterMetaType<PluginMetaData>("class PluginMetaData",
                                                         reinterpret_cast<PluginMetaData *>(quintptr(-1)));
        metaTypeId.storeRelease(id);
        return id;
    }
};
