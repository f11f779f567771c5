#include "MessageLog.h"

#include "ManagerMessages.h"
#include "messages.h"

#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>
#include <utility>

namespace {

constexpr int mostRows = 20000;
constexpr int rowsDroppedAtOnce = 1000;

/// A text of its own, which does not share its characters with one in a plug-in.
QString copyOf(const QString &text)
{
    return QString(text.constData(), text.size());
}

QString valueText(const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QStringList:
        return value.toStringList().join(QStringLiteral(", "));
    case QMetaType::QVariantList:
        return MessageLog::tr("values: %1").arg(value.toList().size());
    case QMetaType::QPointF:
        return QStringLiteral("(%1, %2)")
            .arg(value.toPointF().x(), 0, 'f', 2)
            .arg(value.toPointF().y(), 0, 'f', 2);
    case QMetaType::QRectF:
        return QStringLiteral("(%1, %2, %3 x %4)")
            .arg(value.toRectF().x(), 0, 'f', 1)
            .arg(value.toRectF().y(), 0, 'f', 1)
            .arg(value.toRectF().width(), 0, 'f', 1)
            .arg(value.toRectF().height(), 0, 'f', 1);
    case QMetaType::UnknownType:
        return MessageLog::tr("no value");
    default:
        return value.toString();
    }
}

QString dataText(const QMap<QString, QVariant> &data)
{
    QStringList texts;
    for (auto item = data.constBegin(); item != data.constEnd(); ++item)
        texts.append(item.key() + QStringLiteral(" = ") + valueText(item.value()));
    return texts.join(QStringLiteral("; "));
}

}

QString messageTypeText(qint32 type)
{
    static const QMap<qint32, QString> names{
        {MessageType::ShowText, QStringLiteral("ShowText")},
        {MessageType::RunCommand, QStringLiteral("RunCommand")},
        {MessageType::SelectLayer, QStringLiteral("SelectLayer")},
        {MessageType::LayerShown, QStringLiteral("LayerShown")},
        {MessageType::SelectPart, QStringLiteral("SelectPart")},
        {MessageType::SelectStep, QStringLiteral("SelectStep")},
        {MessageType::ShowProgress, QStringLiteral("ShowProgress")},
        {MessageType::FilterParts, QStringLiteral("FilterParts")},
        {MessageType::CenterOn, QStringLiteral("CenterOn")},
        {MessageType::OpenStep, QStringLiteral("OpenStep")},
        {MessageType::RenameStep, QStringLiteral("RenameStep")},
        {MessageType::ShowSteps, QStringLiteral("ShowSteps")},
        {MessageType::ShowCompareJob, QStringLiteral("ShowCompareJob")},
        {MessageType::ShowKeys, QStringLiteral("ShowKeys")},
        {MessageType::TaskDone, QStringLiteral("TaskDone")},
        {MessageType::AskForPoints, QStringLiteral("AskForPoints")},
        {MessageType::ShowPoints, QStringLiteral("ShowPoints")},
        {MessageType::UseFolder, QStringLiteral("UseFolder")},
        {MessageType::AreaCounted, QStringLiteral("AreaCounted")},
        {MessageType::ShowLayer, QStringLiteral("ShowLayer")},
        {MessageType::LayersShown, QStringLiteral("LayersShown")},
        {MessageType::ShowFindings, QStringLiteral("ShowFindings")},
        {MessageType::UseUnit, QStringLiteral("UseUnit")},
        {MessageType::ShowJob, QStringLiteral("ShowJob")},
        {MessageType::PartsListed, QStringLiteral("PartsListed")},
        {MessageType::FollowView, QStringLiteral("FollowView")},
        {MessageType::FrameOpened, QStringLiteral("FrameOpened")},
        {MessageType::JobRenamed, QStringLiteral("JobRenamed")},
        {MessageType::MatrixJobRenamed, QStringLiteral("MatrixJobRenamed")},
        {MessageType::FrameClosed, QStringLiteral("FrameClosed")},
        {MessageType::GuideOpened, QStringLiteral("GuideOpened")},
        {MessageType::DfmFrameOpened, QStringLiteral("DfmFrameOpened")},
    };
    const QString name = names.value(type);
    return name.isEmpty() ? QString::number(type) : QStringLiteral("%1 (%2)").arg(name).arg(type);
}

int MessageLog::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int MessageLog::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MessageLog::data(const QModelIndex &index, int role) const
{
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        if (index.column() == TimeColumn)
            return row.time.toString(QStringLiteral("HH:mm:ss.zzz"));
        if (index.column() == OperationColumn && row.isConfirmed)
            return tr("%1, logged").arg(row.cells[OperationColumn]);
        if (index.column() == OperationColumn && row.isForNobody)
            return tr("%1, to nobody").arg(row.cells[OperationColumn]);
        return row.cells[index.column()];
    case Qt::ForegroundRole:
        if (row.isForNobody)
            return QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
        return row.isError ? QVariant(QColor(196, 46, 38)) : QVariant();
    case Qt::FontRole: {
        QFont font = QGuiApplication::font();
        font.setItalic(row.isForNobody);
        return row.isForNobody ? QVariant(font) : QVariant();
    }
    case QuietRole:
        return row.type == MessageType::FollowView;
    default:
        return {};
    }
}

QVariant MessageLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList{tr("Time"), tr("Sender"), tr("Receiver"), tr("Type"), tr("Data"), tr("Operation")}
        .value(section);
}

void MessageLog::clear()
{
    beginResetModel();
    m_rows.clear();
    m_held.clear();
    endResetModel();
}

QString MessageLog::text(int row) const
{
    QStringList cells;
    for (int column = 0; column < ColumnCount; ++column)
        cells.append(data(index(row, column), Qt::DisplayRole).toString());
    return cells.join(QLatin1Char('\t'));
}

void MessageLog::note(const QString &operation, const PluginMetaData &message, bool isForNobody)
{
    Row row;
    row.isForNobody = isForNobody;
    row.type = message.type;
    row.cells[SenderColumn] = message.src.isEmpty() ? tr("Host") : copyOf(message.src);
    row.cells[ReceiverColumn] = copyOf(message.dst);
    row.cells[TypeColumn] = messageTypeText(message.type);
    row.cells[DataColumn] = copyOf(dataText(message.data));
    row.cells[OperationColumn] = operation;
    append(std::move(row));
}

void MessageLog::noteFromManager(const QString &operation, const ManagerMessage &message)
{
    Row row;
    row.type = message.type;
    row.cells[SenderColumn] = tr("Manager");
    row.cells[ReceiverColumn] = message.library;
    row.cells[TypeColumn] = messageTypeText(message.type);
    row.cells[DataColumn] = copyOf(dataText(message.data));
    row.cells[OperationColumn] = operation;
    append(std::move(row));
}

void MessageLog::noteCall(const QString &operation, const QString &arguments)
{
    Row row;
    row.cells[SenderColumn] = tr("Host");
    row.cells[ReceiverColumn] = tr("Manager");
    row.cells[TypeColumn] = tr("call");
    row.cells[DataColumn] = copyOf(arguments);
    row.cells[OperationColumn] = operation;
    append(std::move(row));
}

void MessageLog::noteError(const QString &unit, const QString &text)
{
    Row row;
    row.isError = true;
    row.cells[SenderColumn] = unit;
    row.cells[TypeColumn] = tr("error");
    row.cells[DataColumn] = text;
    append(std::move(row));
}

void MessageLog::confirm(const QString &sender, const QString &receiver, qint32 type)
{
    const int held = findLast(m_held, sender, receiver, type);
    if (held >= 0) {
        m_held[held].isConfirmed = true;
        return;
    }
    const int row = findLast(m_rows, sender, receiver, type);
    if (row < 0)
        return;
    m_rows[row].isConfirmed = true;
    emit dataChanged(index(row, OperationColumn), index(row, OperationColumn));
}

void MessageLog::noteFromDesktop(PluginMetaData message)
{
    note(QStringLiteral("recMegfromPlugin"), message, !m_desktopPlugins.contains(message.dst));
}

void MessageLog::setPaused(bool paused)
{
    m_paused = paused;
    if (!paused)
        insert(std::exchange(m_held, {}));
}

void MessageLog::append(Row row)
{
    row.time = QTime::currentTime();
    if (!m_paused) {
        insert({std::move(row)});
        return;
    }
    if (m_held.size() >= mostRows)
        m_held.remove(0, rowsDroppedAtOnce);
    m_held.append(std::move(row));
}

void MessageLog::insert(const QVector<Row> &rows)
{
    if (rows.isEmpty())
        return;
    const int excess = m_rows.size() + rows.size() - mostRows;
    if (excess > 0) {
        const int dropped = std::min(m_rows.size(), std::max(excess, rowsDroppedAtOnce));
        beginRemoveRows({}, 0, dropped - 1);
        m_rows.remove(0, dropped);
        endRemoveRows();
    }
    beginInsertRows({}, m_rows.size(), m_rows.size() + rows.size() - 1);
    m_rows += rows;
    endInsertRows();
}

int MessageLog::findLast(const QVector<Row> &rows, const QString &sender, const QString &receiver,
                         qint32 type)
{
    for (int row = rows.size() - 1; row >= 0; --row) {
        const Row &candidate = rows.at(row);
        if (candidate.type == type && candidate.cells[ReceiverColumn].startsWith(receiver)
            && (candidate.cells[SenderColumn].startsWith(sender) || sender.isEmpty()))
            return row;
    }
    return -1;
}
