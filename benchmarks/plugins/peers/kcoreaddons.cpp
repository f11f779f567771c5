#include "peerreceiver.h"

#include <KPluginFactory>

class KReceiver : public QObject, public PeerReceiver
{
    Q_OBJECT

public:
    KReceiver(QObject *parent, const QVariantList &)
        : QObject(parent)
    {
    }

    void receive(PluginMetaData message) override { m_received += message.type; }

private:
    qint64 m_received = 0;
};

K_PLUGIN_CLASS_WITH_JSON(KReceiver, "kcoreaddons.json")

#include "kcoreaddons.moc"
