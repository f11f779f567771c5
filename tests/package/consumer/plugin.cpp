#include <PluginMetaData.h>

#include <QtWidgets/QLabel>

extern "C" Q_DECL_EXPORT void *GetViewInstance(QWidget *parent)
{
    return static_cast<QWidget *>(new QLabel(QStringLiteral("made by a plug-in"), parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    static_cast<QLabel *>(static_cast<QWidget *>(element))->setText(message.src);
}
