//! [tool]
#include <FileProcess.h>
#include <PluginInterface.h>

#include <QMenu>
#include <QToolBar>

class Files : public QObject, public PluginInterface, public FileProcess
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(PluginInterface FileProcess)

public:
    QToolBar *createToolBar(QWidget *parent) override
    {
        auto *const bar = new QToolBar("Files", parent);
        bar->addAction("Count", this, &Files::askForCount);
        return bar;
    }

    QMenu *createMenu() override { return new QMenu("Files"); }

    void recMsgFromManager(PluginMetaData msg) override { setObjectName(msg.data.value("Count").toString()); }

signals:
    void sendMsgToManager(PluginMetaData msg);

private:
    void askForCount()
    {
        PluginMetaData message;
        message.src = "File_Process";
        message.dst = "Own_Counter";
        message.type = 1;
        emit sendMsgToManager(message);
    }
};

#include "files.moc"
//! [tool]
