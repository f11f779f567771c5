#pragma once

#include <PluginMetaData.h>

#include <QtCore/QAbstractTableModel>
#include <QtCore/QStringList>
#include <QtCore/QTime>
#include <QtCore/QVector>

struct ManagerMessage;

/// What a message type is called in messages.h, with its number.
QString messageTypeText(qint32 type);

/**
 * Every message that the host hands to a manager, sees a desktop plug-in send or knows the CAM manager to
 * send by itself, and every error that the library logs, oldest first.
 *
 * Texts are copied: those of plug-ins may refer to memory that goes when a set is loaded again.
 */
class MessageLog : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        TimeColumn,
        SenderColumn,
        ReceiverColumn,
        TypeColumn,
        DataColumn,
        OperationColumn,
        ColumnCount
    };
    enum Role { QuietRole = Qt::UserRole };

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// What comes meanwhile is shown when the pause ends.
    void setPaused(bool paused);
    /// The names that messages of desktop plug-ins can be for.
    void setDesktopPlugins(const QStringList &names) { m_desktopPlugins = names; }
    void clear();
    QString text(int row) const;

public slots:
    /// One that is for nobody vanishes in the manager without a word.
    void note(const QString &operation, const PluginMetaData &message, bool isForNobody = false);
    void noteFromManager(const QString &operation, const ManagerMessage &message);
    void noteCall(const QString &operation, const QString &arguments);
    void noteError(const QString &unit, const QString &text);
    /// The library's own trace of a delivery, which belongs to the last message of these names and type.
    void confirm(const QString &sender, const QString &receiver, qint32 type);
    /// What desktop plug-ins send, the manager delivers by itself.
    void noteFromDesktop(PluginMetaData message);

private:
    struct Row
    {
        QTime time;
        QString cells[ColumnCount];
        qint32 type = 0;
        bool isError = false;
        bool isForNobody = false;
        bool isConfirmed = false;
    };

    void append(Row row);
    void insert(const QVector<Row> &rows);
    /// The last row of a message, or -1.
    static int findLast(const QVector<Row> &rows, const QString &sender, const QString &receiver,
                        qint32 type);

    QVector<Row> m_rows;
    QVector<Row> m_held;
    QStringList m_desktopPlugins;
    bool m_paused = false;
};
