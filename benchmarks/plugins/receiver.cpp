// A plug-in library with every factory that the benchmarks ask for, and an entry point that does next to
// nothing.

#include "PluginMetaData.h"

#include <QtWidgets/QWidget>

namespace {
quint64 received = 0;
}

extern "C" Q_DECL_EXPORT void *GetORVIKGraphicInstance(QWidget *parent, const QString &, const QString &)
{
    return new QWidget(parent);
}

extern "C" Q_DECL_EXPORT void *GetORVIKMatrixInstance(QWidget *parent)
{
    return new QWidget(parent);
}

extern "C" Q_DECL_EXPORT void *GetPluginCamGuideInstance(QWidget *parent)
{
    return new QWidget(parent);
}

extern "C" Q_DECL_EXPORT void *GetViewInstance(QWidget *parent)
{
    return new QWidget(parent);
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *, PluginMetaData message)
{
    received += quint64(message.type);
}

extern "C" Q_DECL_EXPORT quint64 numberReceived()
{
    return received;
}
