#pragma once

#include "events.h"
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
        /// What its plug-in calls itself, whatever it is listed as.
        QString name;
        QStringList factories;
        bool exportsEntryPoint;
    };

    /// What a configuration file has to say.
    struct Configuration
    {
        enum class State { Listing, Missing, NoJson };

        QString path;
        State state;
        QStringList names;
    };

    /// The loaded libraries, by the name that they are listed as.
    QHash<QString, Library> libraries;
    /// What is found when a configuration file names it. The loader says of anything else `reasonOfAbsence`.
    QHash<QString, Library> loadable;
    QByteArray reasonOfAbsence;
    /// Returns the element that a factory makes. May call operations of this object.
    std::function<void *()> onFactory;
    /// What the plug-in does that is told something. May call operations of this object, and may throw.
    std::function<void()> onDelivery;

    RegistryModel registry;

    /// What has happened.
    std::vector<CamEvent> events;

    /// Forgets everything but what there is to load, and loads `loaded`.
    void restart(const QHash<QString, Library> &loaded);

    bool loadAllPlugins(const Configuration &configuration);
    bool loadAllDFMPlugins(const Configuration &configuration);
    bool isCAMLoaded() const { return m_isCAMLoaded; }
    bool isDFMLoaded() const { return m_isDFMLoaded; }

    void insertRoot(const std::string &name, void *root);
    void *getRoot();

    void *registerElement(const std::string &library, const QString &symbol, QWidget *parent,
                          const QString &factoryText);

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
    QStringList readConfiguration(const Configuration &configuration);
    void load(const QStringList &names);
    bool exports(const QString &library, const QString &factory) const;
    void *callFactory(Recorder::FactoryCall call);
    bool deliver(const QString &library, void *target, const PluginMetaData &message);
    void deliverToNamed(void *parent, const PluginMetaData &message);
    void deliverToContaining(void *parent, const PluginMetaData &message);
    void deliverToRoot(const PluginMetaData &message);
    void deleteFrame(void *frame, const QString &editor);
    void inform(char severity, const QByteArray &text);
    void informOfLoading(const QByteArray &text);
    void showing(const char *text, const std::function<void()> &action);

    QStringList m_described;
    bool m_isCAMLoaded = false;
    bool m_isDFMLoaded = false;
};
