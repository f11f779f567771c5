#pragma once

#include <PluginMetaData.h>

#include <QtCore/QAbstractTableModel>
#include <QtCore/QTime>
#include <QtCore/QVector>

/// What a message type is called in messages.h, with its number.
QString messageTypeText(qint32 type);

/**
 * Every message that the host hands to a manager or sees a desktop plug-in send, every error that the library
 * logs, oldest first.
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

    void setPaused(bool paused) { m_paused = paused; }
    void clear();
    QString text(int row) const;

public slots:
    void note(const QString &operation, const PluginMetaData &message);
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
        bool isConfirmed = false;
    };

    void append(Row row);

    QVector<Row> m_rows;
    bool m_paused = false;
};
