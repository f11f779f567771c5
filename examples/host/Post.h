#pragma once

#include <PluginMetaData.h>

#include <QtCore/QMap>
#include <QtCore/QObject>

#include <functional>

class MessageLog;
class QTpluginsManger4CAM;

/**
 * Where the host calls the CAM manager to deliver something.
 *
 * Each call is noted before it is made. What a plug-in throws does not reach the event loop, which could not
 * bear it: it ends here, and is told to whoever listens.
 */
class Post : public QObject
{
    Q_OBJECT

public:
    Post(QTpluginsManger4CAM *manager, MessageLog &log);

    QTpluginsManger4CAM *manager() const { return m_manager; }

    using Call = std::function<void()>;
    void deliver(const char *operation, const PluginMetaData &message, const Call &call);
    /// For operations that make their messages themselves.
    void call(const char *operation, const QString &arguments, const Call &call);

    // The operations that several parts of the host use.
    void toElement(QWidget *frame, const PluginMetaData &message);
    void toElementOfRoot(const PluginMetaData &message);
    void toFramesOfJob(const QString &job, const PluginMetaData &message);

    /// The message types that were thrown at, by library.
    const QMap<QString, QString> &failures() const { return m_failures; }

signals:
    void pluginThrew(const QString &library, const QString &what);

private:
    void run(const char *operation, const QString &library, const QString &occasion, const Call &call);

    QTpluginsManger4CAM *m_manager;
    MessageLog &m_log;
    QMap<QString, QString> m_failures;
};
