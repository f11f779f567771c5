#include "peerreceiver.h"

#include <class_loader/class_loader.hpp>

class ClassLoaderReceiver : public PeerReceiver
{
public:
    void receive(PluginMetaData message) override { m_received += message.type; }

private:
    qint64 m_received = 0;
};

CLASS_LOADER_REGISTER_CLASS(ClassLoaderReceiver, PeerReceiver)
