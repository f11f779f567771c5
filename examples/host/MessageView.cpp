#include "MessageView.h"

#include "MessageLog.h"
#include "glyphs.h"

#include <QtCore/QSaveFile>
#include <QtCore/QSortFilterProxyModel>
#include <QtGui/QClipboard>
#include <QtWidgets/QAction>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolBar>

namespace {

/// Hides the quiet messages, of which there is one for every move of the mouse.
class MessageFilter : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void showQuiet(bool shown)
    {
        m_showsQuiet = shown;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override
    {
        const bool isQuiet = sourceModel()->index(row, 0, parent).data(MessageLog::QuietRole).toBool();
        return (m_showsQuiet || !isQuiet) && QSortFilterProxyModel::filterAcceptsRow(row, parent);
    }

private:
    bool m_showsQuiet = false;
};

}

MessageView::MessageView(MessageLog &log)
    : m_log(log)
    , m_filtered(new MessageFilter(this))
    , m_table(new QTableView)
    , m_filter(new QLineEdit)
    , m_quiet(new QCheckBox(tr("Quiet ones")))
    , m_details(new QLabel)
{
    m_details->setObjectName(QStringLiteral("details"));
    m_details->setWordWrap(true);
    m_details->setTextFormat(Qt::PlainText);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->hide();
    m_filtered->setSourceModel(&log);
    m_filtered->setFilterKeyColumn(-1);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter by sender, receiver, type or data"));
    m_filter->setClearButtonEnabled(true);

    m_table->setModel(m_filtered);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->horizontalHeader()->setSectionResizeMode(MessageLog::DataColumn, QHeaderView::Stretch);
    const int character = fontMetrics().averageCharWidth();
    const QMap<int, int> widths{{MessageLog::TimeColumn, 14},
                                {MessageLog::SenderColumn, 23},
                                {MessageLog::ReceiverColumn, 23},
                                {MessageLog::TypeColumn, 18},
                                {MessageLog::OperationColumn, 23}};
    for (auto width = widths.constBegin(); width != widths.constEnd(); ++width)
        m_table->setColumnWidth(width.key(), width.value() * character);

    auto *const tools = new QToolBar;
    tools->setIconSize({16, 16});
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tools->addWidget(m_filter);
    m_quiet->setObjectName(QStringLiteral("quiet"));
    m_quiet->setToolTip(tr("Also show messages that follow every move of the mouse"));
    tools->addWidget(m_quiet);
    m_pause = addAction(tr("Pause"), "pause");
    m_pause->setCheckable(true);
    m_copy = addAction(tr("Copy"), "copy");
    m_save = addAction(tr("Save"), "save");
    m_clear = addAction(tr("Clear"), "clear");
    tools->addActions({m_pause, m_copy, m_save, m_clear});

    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 0, 4, 4);
    column->setSpacing(2);
    column->addWidget(tools);
    column->addWidget(m_table);
    column->addWidget(m_details);
    connectActions();
}

QString MessageView::shownText() const
{
    const QModelIndexList selected = m_table->selectionModel()->selectedRows();
    QStringList lines;
    for (int row = 0; row < m_filtered->rowCount(); ++row) {
        const QModelIndex shown = m_filtered->index(row, 0);
        if (selected.isEmpty() || selected.contains(shown))
            lines.append(m_log.text(m_filtered->mapToSource(shown).row()));
    }
    return lines.join(QLatin1Char('\n'));
}

bool MessageView::saveTo(const QString &file) const
{
    QSaveFile saved(file);
    return saved.open(QIODevice::WriteOnly) && saved.write(shownText().toUtf8() + '\n') > 0 && saved.commit();
}

void MessageView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_table->scrollToBottom();
}

QAction *MessageView::addAction(const QString &text, const char *name)
{
    auto *const action = new QAction(glyphIcon(QLatin1String(name)), text, this);
    action->setObjectName(QLatin1String(name));
    return action;
}

void MessageView::connectActions()
{
    const auto filter = [this] { setFilter(m_filter->text(), m_quiet->isChecked()); };
    connect(m_filter, &QLineEdit::textChanged, this, filter);
    connect(m_quiet, &QCheckBox::toggled, this, filter);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &row) {
                m_details->setText(row.sibling(row.row(), MessageLog::DataColumn).data().toString());
                m_details->setVisible(!m_details->text().isEmpty());
            });
    connect(m_pause, &QAction::toggled, this, [this](bool paused) { m_log.setPaused(paused); });
    connect(m_copy, &QAction::triggered, this, [this] { QApplication::clipboard()->setText(shownText()); });
    connect(m_save, &QAction::triggered, this, &MessageView::save);
    connect(m_clear, &QAction::triggered, this, [this] { m_log.clear(); });
    // Stays at the end for as long as the user has not scrolled away from it.
    connect(m_filtered, &QAbstractItemModel::rowsAboutToBeInserted, this, [this] {
        const QScrollBar *const bar = m_table->verticalScrollBar();
        if (bar->value() == bar->maximum())
            QMetaObject::invokeMethod(m_table, &QTableView::scrollToBottom, Qt::QueuedConnection);
    });
}

void MessageView::setFilter(const QString &text, bool withQuiet)
{
    m_filtered->setFilterFixedString(text);
    static_cast<MessageFilter *>(m_filtered)->showQuiet(withQuiet);
}

void MessageView::save()
{
    const QString file = QFileDialog::getSaveFileName(this, tr("Save messages"),
                                                      QStringLiteral("messages.txt"), tr("Texts (*.txt)"));
    if (!file.isEmpty())
        saveTo(file);
}
