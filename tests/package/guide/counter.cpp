//! [counter]
#include <PluginInterface.h>

class Counter : public QObject, public PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(PluginInterface)

public:
    void recMsgFromManager(PluginMetaData msg) override
    {
        PluginMetaData answer;
        answer.src = "Own_Counter";
        answer.dst = msg.src;
        answer.type = 2;
        answer.data["Count"] = QString::number(++m_count);
        emit sendMsgToManager(answer);
    }

signals:
    void sendMsgToManager(PluginMetaData msg);

private:
    int m_count = 0;
};

#include "counter.moc"
//! [counter]
