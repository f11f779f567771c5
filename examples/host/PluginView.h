#pragma once

#include <QtWidgets/QWidget>

class PluginCatalog;
class QLabel;
class QTreeWidget;

/// What is wrong with plug-ins and what to do about it; then every configured library with its file and
/// version.
class PluginView : public QWidget
{
    Q_OBJECT

public:
    explicit PluginView(const PluginCatalog &catalog);

private:
    void showPlugins();

    const PluginCatalog &m_catalog;
    QLabel *m_summary;
    QTreeWidget *m_list;
    QLabel *m_troubles;
};
