#include "Post.h"

#include "ManagerMessages.h"
#include "MessageLog.h"

#include <pluginManger4CAM.h>

#include <exception>

QString caughtText()
{
    try {
        throw;
    } catch (const std::exception &exception) {
        return QString::fromUtf8(exception.what());
    } catch (...) {
        return Post::tr("something that is no std::exception");
    }
}

Post::Post(QTpluginsManger4CAM *manager, MessageLog &log)
    : m_manager(manager)
    , m_log(log)
{
}

bool Post::deliver(const char *operation, const PluginMetaData &message, const Call &call, bool isForNobody)
{
    m_log.note(QLatin1String(operation), message, isForNobody);
    return run(operation, message.dst, messageTypeText(message.type), call);
}

bool Post::call(const char *operation, const QString &arguments, const Call &call, const QString &library)
{
    m_log.noteCall(QLatin1String(operation), arguments);
    return run(operation, library, QLatin1String(operation), call);
}

void Post::noteSent(const char *operation, const QVector<ManagerMessage> &messages)
{
    for (const ManagerMessage &message : messages)
        m_log.noteFromManager(QLatin1String(operation), message);
}

bool Post::guard(const char *operation, const QString &library, const Call &call)
{
    return run(operation, library, QLatin1String(operation), call);
}

void Post::tellThrown(const char *operation, const QString &library, const QString &occasion,
                      const QString &what)
{
    const QString who = library.isEmpty() ? tr("A plug-in") : library;
    m_log.noteError(QLatin1String(operation), tr("%1 threw at %2: %3").arg(who, occasion, what));
    const QString key = library.isEmpty() ? occasion : library;
    if (m_failures.contains(key))
        return;
    m_failures.insert(key, what);
    emit pluginThrew(library, tr("It threw while it handled %1: %2.").arg(occasion, what));
}

/// Desktop plug-ins go by their names.
void Post::forgive(const QString &library)
{
    m_failures.remove(library);
    m_failures.remove(library.section(QStringLiteral(".dll"), 0, 0));
}

void Post::toElement(QWidget *frame, const PluginMetaData &message)
{
    const bool isForNobody = m_finder && !m_finder(frame, message);
    deliver(
        "recMegToPlugin", message, [&] { m_manager->recMegToPlugin(frame, message); }, isForNobody);
}

void Post::toFrameOrElement(const PluginMetaData &message)
{
    const bool isForNobody = m_finder && !m_finder(nullptr, message);
    deliver(
        "pluginTransmitData", message, [&] { m_manager->pluginTransmitData(message); }, isForNobody);
}

void Post::toElementOfRoot(const PluginMetaData &message)
{
    PluginMetaData named = message;
    named.data.insert(QStringLiteral("DstType"), QStringLiteral("EngineerRoot"));
    const bool isForNobody = m_finder && !m_finder(nullptr, named);
    deliver(
        "updateEngieer", message, [&] { m_manager->updateEngieer({}, message); }, isForNobody);
}

void Post::toFramesOfJob(const QString &job, const PluginMetaData &message)
{
    deliver("Eda_CAM_TransmitData", message, [&] { m_manager->Eda_CAM_TransmitData(job, message); });
}

bool Post::run(const char *operation, const QString &library, const QString &occasion, const Call &call)
{
    try {
        call();
        return true;
    } catch (...) {
        tellThrown(operation, library, occasion, caughtText());
        return false;
    }
}
