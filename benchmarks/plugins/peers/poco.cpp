#include "peerreceiver.h"

#include <Poco/ClassLibrary.h>

class PocoReceiver : public PeerReceiver
{
public:
    void receive(PluginMetaData message) override { m_received += message.type; }

private:
    qint64 m_received = 0;
};

POCO_BEGIN_MANIFEST(PeerReceiver)
POCO_EXPORT_CLASS(PocoReceiver)
POCO_END_MANIFEST
