#pragma once

#include <PluginMetaData.h>

#include <QtCore/QMap>
#include <QtCore/QObject>

#include <functional>

class MessageLog;
struct ManagerMessage;
class QTpluginsManger4CAM;

/// What the exception says that is being caught.
QString caughtText();

/**
 * Where the host calls the managers, as far as that leads into plug-ins.
 *
 * Each delivery is noted before it is made. What a plug-in throws does not reach the event loop, which is not
 * made for it: it ends here, and is told to whoever listens, once for each library.
 */
class Post : public QObject
{
    Q_OBJECT

public:
    Post(QTpluginsManger4CAM *manager, MessageLog &log);

    QTpluginsManger4CAM *manager() const { return m_manager; }

    using Call = std::function<void()>;
    // All return whether nothing was thrown.
    bool deliver(const char *operation, const PluginMetaData &message, const Call &call,
                 bool isForNobody = false);
    /// For operations that make their messages themselves. The library is empty when several may be called.
    bool call(const char *operation, const QString &arguments, const Call &call, const QString &library = {});
    /// Notes what the manager has sent by itself in such an operation.
    void noteSent(const char *operation, const QVector<ManagerMessage> &messages);
    /// For calls that are no deliveries, and are not noted.
    bool guard(const char *operation, const QString &library, const Call &call);
    /// The library is empty when nobody knows whose fault it was.
    void tellThrown(const char *operation, const QString &library, const QString &occasion,
                    const QString &what);
    /// What it throws is told once more.
    void forgive(const QString &library);

    // The operations that several parts of the host use.
    void toElement(QWidget *frame, const PluginMetaData &message);
    void toFrameOrElement(const PluginMetaData &message);
    void toElementOfRoot(const PluginMetaData &message);
    void toFramesOfJob(const QString &job, const PluginMetaData &message);

    /// What was thrown, by library, or by occasion where that is not known.
    const QMap<QString, QString> &failures() const { return m_failures; }

    /// Whether something is registered that such a message is for: an element in the frame, or without a
    /// frame what "DstType", "JobName" and "Step" name.
    using Finder = std::function<bool(const QWidget *frame, const PluginMetaData &message)>;
    void setFinder(const Finder &finder) { m_finder = finder; }

signals:
    void pluginThrew(const QString &library, const QString &what);

private:
    bool run(const char *operation, const QString &library, const QString &occasion, const Call &call);

    QTpluginsManger4CAM *m_manager;
    MessageLog &m_log;
    Finder m_finder;
    QMap<QString, QString> m_failures;
};
