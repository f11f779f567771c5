#include "messages.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

/**
 * How far a piece of work has come.
 *
 * Hosts know it as a QObject. They may show it as a dialog or, since it is one line high, put it into a
 * window.
 */
class ProgressDialog : public QDialog
{
    Q_DECLARE_TR_FUNCTIONS(ProgressDialog)

public:
    explicit ProgressDialog(QWidget *parent);

    void setText(const QString &text) { m_text->setText(text); }
    void setPercent(int percent) { m_bar->setValue(percent); }
    void showJob(const QString &job);

private:
    QString m_job;
    QLabel *const m_text = new QLabel;
    QProgressBar *const m_bar = new QProgressBar;
};

ProgressDialog::ProgressDialog(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Progress"));
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(6, 2, 6, 2);
    row->addWidget(m_text, 1);
    row->addWidget(m_bar);
    m_text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_bar->setRange(0, 100);
    m_bar->setFixedWidth(m_bar->fontMetrics().averageCharWidth() * 24);
    m_bar->setMaximumHeight(fontMetrics().height() + 4);
}

/// What was finished for another job is of no interest any more.
void ProgressDialog::showJob(const QString &job)
{
    if (m_job != job && m_bar->value() == m_bar->maximum()) {
        m_text->clear();
        m_bar->reset();
    }
    m_job = job;
}

/// The dialog belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QObject *>(new ProgressDialog(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const dialog = static_cast<ProgressDialog *>(static_cast<QObject *>(element));
    if (message.type == MessageType::ShowText || message.type == MessageType::ShowProgress)
        dialog->setText(textParameter(message, "Text"));
    if (message.type == MessageType::ShowProgress)
        dialog->setPercent(parameter(message, "Percent").toInt());
    if (message.type == MessageType::ShowJob)
        dialog->showJob(textParameter(message, "JobName"));
}
