#include "PluginInterface.h"

class DesktopReceiver : public QObject, public PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")

public:
    void recMsgFromManager(PluginMetaData msg) override { m_received += msg.type; }

signals:
    void sendMsgToManager(PluginMetaData msg);

private:
    qint64 m_received = 0;
};

#include "desktopreceiver.moc"
