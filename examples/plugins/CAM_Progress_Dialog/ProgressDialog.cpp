#include "messages.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

/**
 * How far a piece of work has come.
 *
 * Hosts know it as a QObject and set its properties. They may show it as a dialog or, since it is one
 * line high, put it into a window.
 */
class ProgressDialog : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
    Q_PROPERTY(int percent READ percent WRITE setPercent)

public:
    explicit ProgressDialog(QWidget *parent);

    QString text() const { return m_text->text(); }
    void setText(const QString &text) { m_text->setText(text); }
    int percent() const { return m_bar->value(); }
    void setPercent(int percent) { m_bar->setValue(percent); }

private:
    QLabel *const m_text = new QLabel;
    QProgressBar *const m_bar = new QProgressBar;
};

ProgressDialog::ProgressDialog(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Progress"));
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(6, 2, 6, 2);
    row->addWidget(m_text, 1);
    row->addWidget(m_bar);
    m_text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_bar->setRange(0, 100);
    m_bar->setFixedWidth(160);
}

/// The dialog belongs to its parent.
extern "C" Q_DECL_EXPORT void *GetPluginInstance(QWidget *parent)
{
    return static_cast<QObject *>(new ProgressDialog(parent));
}

extern "C" Q_DECL_EXPORT void recMsgFromManager(void *element, PluginMetaData message)
{
    auto *const dialog = static_cast<ProgressDialog *>(static_cast<QObject *>(element));
    if (message.type == MessageType::ShowText)
        dialog->setText(parameter(message, "Text").toString());
    else if (message.type == MessageType::ShowProgress)
        dialog->setPercent(parameter(message, "Percent").toInt());
}

#include "ProgressDialog.moc"
