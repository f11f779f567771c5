#include <PluginInterface.h>

class OwnPlugin : public QObject, public PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")

public:
    void recMsgFromManager(PluginMetaData msg) override { setObjectName(msg.src); }

signals:
    void sendMsgToManager(PluginMetaData msg);
};

#include "qtplugin.moc"
