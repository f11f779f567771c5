#pragma once

#include "loglines.h"
#include "recorder.h"
#include "registrymodel.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <functional>

/// The rules of the CAM manager once more, as plainly as they can be written: what each public operation does
/// to the registry, whom it tells what, and what it logs. It loads nothing and calls nobody; what plug-ins do
/// when they are called is given to it.
class CamModel
{
public:
    struct Library
    {
        bool exportsFactory;
        bool exportsEntryPoint;
    };

    /// The loaded libraries, by file name.
    QHash<QString, Library> libraries;
    /// Returns the element that a factory makes. May call operations of this object.
    std::function<void *()> onFactory;
    /// What the plug-in does that is told something. May call operations of this object, and may throw.
    std::function<void()> onDelivery;

    RegistryModel registry;

    /// What has happened outside the registry, in its order.
    QList<Recorder::FactoryCall> factoryCalls;
    QList<Recorder::Delivery> deliveries;
    QList<LogLines::Line> log;
    /// The texts of the boxes titled "Info".
    QStringList boxes;

    void insertRoot(const std::string &name, void *root);
    void *getRoot();

    void *registerElement(const QString &library, const QString &symbol, QWidget *parent,
                          const QString &text);

    void *registerGraphicFramework(QWidget *parent, const std::string &name, bool isCamAssistant);
    void *registerDFMGraphicFramework(QWidget *parent, const std::string &name);
    void *registerGraphicFramework4Quorel(QWidget *parent, const std::string &job, const std::string &step);
    void *registerDFMGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                             const std::string &step);
    void *registerMatrixFramework(QWidget *parent, const std::string &job);
    void *registerGuideFramework(QWidget *parent, const std::string &job);
    void *registerCamGuide(const std::string &name, QWidget *parent, const std::string &job);
    void unregisterGraphicFramework4Quorel(const std::string &job, const std::string &step);
    void unregisterDFMGraphicFramework4Quorel(const std::string &job, const std::string &step);

    void recMegToPlugin(void *frame, PluginMetaData message);
    void pluginTransmitData(PluginMetaData message);
    void transmitDataToFramework(void *frame, const PluginMetaData &message);
    void sendKeyBoardStatusToGraphic(void *frame, const PluginMetaData &message);
    void edaCAMTransmitData(const QString &jobName, PluginMetaData message);
    void edaSetTransmitData(const QString &dstType, const QString &jobName, const PluginMetaData &message);

    void setCurrentText(const QString &text, PluginMetaData message);
    void setInterfaceTexts(const QString &dstType, const QString &text, const PluginMetaData &message);

    void changeCompareJobInfo(const PluginMetaData &message);
    void changeJobNameAndUpdateJob(const QString &oldJobName, const QString &newJobName);
    void changeStepName(const QString &jobName, const QString &oldStepName, const QString &newStepName);
    void deleteTreeNode(const QString &nodeType, const QString &name);
    void updateJob(const QString &name, PluginMetaData message);

    void updateEngieer(const PluginMetaData &message);
    void updateGraphic(const QString &name, PluginMetaData message);
    void updateMatrix(const QString &name, const PluginMetaData &message);
    void updateGuide(const QString &name, const PluginMetaData &message);

private:
    bool exportsFactory(const QString &library) const;
    void *callFactory(Recorder::FactoryCall call);
    bool deliver(const QString &library, void *target, const PluginMetaData &message);
    void deliverToNamed(void *parent, const PluginMetaData &message);
    void deliverToContaining(void *parent, const PluginMetaData &message);
    void deliverToRoot(const PluginMetaData &message);
    void deleteFrame(void *frame, const QString &editor);
    void inform(char severity, const QByteArray &text);
    void showing(const char *text, const std::function<void()> &action);
};
