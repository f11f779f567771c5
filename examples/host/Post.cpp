#include "Post.h"

#include "MessageLog.h"

#include <pluginManger4CAM.h>

#include <exception>

Post::Post(QTpluginsManger4CAM *manager, MessageLog &log)
    : m_manager(manager)
    , m_log(log)
{
}

void Post::deliver(const char *operation, const PluginMetaData &message, const Call &call)
{
    m_log.note(QLatin1String(operation), message);
    run(operation, message.dst, messageTypeText(message.type), call);
}

void Post::call(const char *operation, const QString &arguments, const Call &call)
{
    m_log.noteCall(QLatin1String(operation), arguments);
    run(operation, {}, QLatin1String(operation), call);
}

void Post::toElement(QWidget *frame, const PluginMetaData &message)
{
    deliver("recMegToPlugin", message, [&] { m_manager->recMegToPlugin(frame, message); });
}

void Post::toElementOfRoot(const PluginMetaData &message)
{
    deliver("updateEngieer", message, [&] { m_manager->updateEngieer({}, message); });
}

void Post::toFramesOfJob(const QString &job, const PluginMetaData &message)
{
    deliver("Eda_CAM_TransmitData", message, [&] { m_manager->Eda_CAM_TransmitData(job, message); });
}

void Post::run(const char *operation, const QString &library, const QString &occasion, const Call &call)
{
    QString what;
    try {
        call();
        return;
    } catch (const std::exception &exception) {
        what = QString::fromUtf8(exception.what());
    } catch (...) {
        what = tr("something that is no std::exception");
    }
    m_log.noteError(QLatin1String(operation), tr("%1 threw at %2: %3").arg(library, occasion, what));
    if (m_failures.contains(library))
        return;
    m_failures.insert(library, what);
    emit pluginThrew(library, tr("It threw while it handled %1: %2.").arg(occasion, what));
}
