#include "DesktopPlugin.h"

#include <FileProcess.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointF>
#include <QtCore/QSaveFile>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolBar>

/// Keeps the test points of each part in a file, in the folder for temporary files unless told otherwise.
class PointFiles : public DesktopPlugin, public FileProcess
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "pluginManger.PluginInterface/1.0")
    Q_INTERFACES(FileProcess)

public:
    PointFiles();

    QToolBar *createToolBar(QWidget *parent) override;
    QMenu *createMenu() override;
    void recMsgFromManager(PluginMetaData message) override;

private:
    QList<QAction *> commands();
    QString fileName() const;
    void open();
    void write(const QVariantList &points);
    void tell(const QString &text);

    QDir m_folder = QDir::temp();
    QString m_part;
    QList<QAction *> m_commands;
};

PointFiles::PointFiles()
    : DesktopPlugin("File_Process")
{
}

QToolBar *PointFiles::createToolBar(QWidget *parent)
{
    auto *const toolBar = new QToolBar(tr("Points"), parent);
    toolBar->setObjectName(QLatin1String("File_Process"));
    toolBar->addActions(commands());
    return toolBar;
}

QMenu *PointFiles::createMenu()
{
    auto *const menu = new QMenu(tr("Points"));
    menu->addActions(commands());
    return menu;
}

/// The points are the view's, so saving them begins with a question.
void PointFiles::recMsgFromManager(PluginMetaData message)
{
    const QString command = textParameter(message, "Command");
    if (message.type == MessageType::SelectPart)
        m_part = textParameter(message, "Part");
    else if (message.type == MessageType::UseFolder)
        m_folder.setPath(textParameter(message, "Folder"));
    else if (message.type == MessageType::ShowPoints)
        write(parameter(message, "Points").toList());
    else if (message.type == MessageType::RunCommand && m_part.isEmpty())
        tell(tr("No part is selected"));
    else if (message.type == MessageType::RunCommand && command == QLatin1String("open"))
        open();
    else if (message.type == MessageType::RunCommand && command == QLatin1String("save"))
        send("Viewbar_View", MessageType::AskForPoints, {});
}

/// The manager hands over what a plug-in sends to itself, too. Tool bar and menu share the actions, and with
/// them the keys.
QList<QAction *> PointFiles::commands()
{
    if (m_commands.isEmpty())
        m_commands = makeCommands({{QT_TRANSLATE_NOOP("Entries", "Open"), "Ctrl+O"},
                                   {QT_TRANSLATE_NOOP("Entries", "Save"), "Ctrl+S"}},
                                  "File_Process");
    return m_commands;
}

QString PointFiles::fileName() const
{
    return QLatin1String("testpoints-%1.json").arg(m_part);
}

void PointFiles::open()
{
    QFile file(m_folder.filePath(fileName()));
    if (!file.open(QIODevice::ReadOnly)) {
        tell(tr("Cannot open %1: %2").arg(file.fileName(), file.errorString()));
        return;
    }
    const QJsonArray saved = QJsonDocument::fromJson(file.readAll()).array();
    QVariantList points;
    for (const QJsonValue &point : saved)
        points.append(QPointF(point["x"].toDouble(), point["y"].toDouble()));
    send("Viewbar_View", MessageType::ShowPoints, {{"Points", points}});
    tell(tr("%1 test points opened from %2").arg(points.size()).arg(fileName()));
}

void PointFiles::write(const QVariantList &points)
{
    QJsonArray saved;
    for (const QVariant &point : points)
        saved.append(QJsonObject{{"x", point.toPointF().x()}, {"y", point.toPointF().y()}});
    QSaveFile file(m_folder.filePath(fileName()));
    if (file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(saved).toJson()) >= 0 && file.commit())
        tell(tr("%1 test points saved to %2").arg(points.size()).arg(fileName()));
    else
        tell(tr("Cannot save %1: %2").arg(file.fileName(), file.errorString()));
}

void PointFiles::tell(const QString &text)
{
    send("Viewbar_Status", MessageType::ShowText, {{"Text", text}});
}

#include "PointFiles.moc"
