#pragma once

#include <QtWidgets/QWidget>

class MessageLog;
class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QSortFilterProxyModel;
class QTableView;

/// The message log as a table that follows its end, with a filter, a pause, and ways to take it elsewhere.
class MessageView : public QWidget
{
    Q_OBJECT

public:
    explicit MessageView(MessageLog &log);

    /// What is to be seen, one line for each message. The rows that are selected, or else all.
    QString shownText() const;
    bool saveTo(const QString &file) const;

protected:
    void showEvent(QShowEvent *event) override;

private:
    QAction *addAction(const QString &text, const char *name);
    void connectActions();
    void setFilter(const QString &text, bool withQuiet);
    void save();

    MessageLog &m_log;
    QSortFilterProxyModel *m_filtered;
    QTableView *m_table;
    QLineEdit *m_filter;
    QCheckBox *m_quiet;
    /// All of the data of the row that is chosen, for which its column may have no room.
    QLabel *m_details;
    QAction *m_pause;
    QAction *m_copy;
    QAction *m_save;
    QAction *m_clear;
};
