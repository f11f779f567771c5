#include "board.h"
#include "messages.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollArea>

/// What is known about one part number.
class PartDataView : public QScrollArea
{
    Q_DECLARE_TR_FUNCTIONS(PartDataView)

public:
    explicit PartDataView(QWidget *parent);

    void showText(const QString &text) { m_heading->setText(text); }
    void showPart(const QString &file);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void makeRoom();

    QLabel *const m_heading = new QLabel;
    QLabel *const m_customer = new QLabel;
    QLabel *const m_size = new QLabel;
    QLabel *const m_layers = new QLabel;
    QLabel *const m_finish = new QLabel;
};

PartDataView::PartDataView(QWidget *parent)
    : QScrollArea(parent)
{
    auto *const page = new QWidget;
    auto *const form = new QFormLayout(page);
    form->setContentsMargins(8, 6, 8, 6);
    form->setVerticalSpacing(4);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    for (QLabel *const label : {m_heading, m_customer, m_size, m_layers, m_finish})
        label->setWordWrap(true);
    form->addRow(m_heading);
    form->addRow(tr("Customer"), m_customer);
    form->addRow(tr("Board"), m_size);
    form->addRow(tr("Layers"), m_layers);
    form->addRow(tr("Finish"), m_finish);
    QFont bold = m_heading->font();
    bold.setBold(true);
    m_heading->setFont(bold);
    m_heading->setText(tr("No part is selected"));

    setWidget(page);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void PartDataView::showPart(const QString &file)
{
    const Job job = readJob(file);
    const QSizeF size = job.outline.boundingRect().size();
    m_heading->setText(tr("%1, revision %2").arg(job.part.number, job.part.revision));
    m_customer->setText(job.part.customer);
    m_size->setText(tr("%1 x %2 x %3 mm").arg(size.width()).arg(size.height()).arg(job.part.thickness));
    m_layers->setText(
        tr("%1, %2 features").arg(job.part.layerCount).arg(QLocale().toString(job.featureCount())));
    m_finish->setText(job.part.finish);
    makeRoom();
}

void PartDataView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    makeRoom();
}

/// Texts that go on in another line need more of it.
void PartDataView::makeRoom()
{
    setMinimumHeight(widget()->heightForWidth(viewport()->width()) + 2 * frameWidth());
}

/// The view belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QScrollArea *>(new PartDataView(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const view = static_cast<PartDataView *>(static_cast<QScrollArea *>(element));
    if (message.type == MessageType::ShowText)
        view->showText(textParameter(message, "Text"));
    else if (message.type == MessageType::SelectPart)
        view->showPart(textParameter(message, "File"));
}
