#include "PluginView.h"

#include "PluginCatalog.h"

#include <QtCore/QDir>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace {

enum Column { NameColumn, SetColumn, StateColumn, VersionColumn, FileColumn };

QStyle::StandardPixmap iconOf(CataloguedPlugin::State state)
{
    switch (state) {
    case CataloguedPlugin::Loaded:
        return QStyle::SP_DialogApplyButton;
    case CataloguedPlugin::Suspicious:
        return QStyle::SP_MessageBoxWarning;
    default:
        return QStyle::SP_MessageBoxCritical;
    }
}

QString versionText(const CataloguedPlugin &plugin)
{
    if (plugin.ownVersion.isEmpty() || plugin.ownVersion == plugin.wantedVersion)
        return plugin.wantedVersion;
    return PluginView::tr("%1, not %2").arg(plugin.ownVersion, plugin.wantedVersion);
}

}

PluginView::PluginView(const PluginCatalog &catalog)
    : m_catalog(catalog)
    , m_summary(new QLabel)
    , m_list(new QTreeWidget)
    , m_troubles(new QLabel)
{
    QFont heading = m_summary->font();
    heading.setPointSizeF(heading.pointSizeF() * 1.25);
    m_summary->setFont(heading);
    m_summary->setObjectName(QStringLiteral("summary"));
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("Plug-in"), tr("Set"), tr("State"), tr("Version"), tr("File")});
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_troubles->setWordWrap(true);
    m_troubles->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_troubles->setObjectName(QStringLiteral("troubles"));

    auto *const column = new QVBoxLayout(this);
    column->addWidget(m_summary);
    column->addWidget(m_troubles);
    column->addWidget(m_list, 1);
    connect(&catalog, &PluginCatalog::changed, this, &PluginView::showPlugins);
    showPlugins();
}

void PluginView::showPlugins()
{
    QVector<CataloguedPlugin> plugins = m_catalog.plugins();
    std::stable_sort(
        plugins.begin(), plugins.end(), [](const CataloguedPlugin &left, const CataloguedPlugin &right) {
            return (left.state == CataloguedPlugin::Loaded) < (right.state == CataloguedPlugin::Loaded);
        });
    m_list->clear();
    QStringList troubles;
    for (const CataloguedPlugin &plugin : qAsConst(plugins)) {
        auto *const item = new QTreeWidgetItem(
            m_list, {plugin.name, PluginCatalog::setName(plugin.set), PluginCatalog::stateText(plugin.state),
                     versionText(plugin), QDir::toNativeSeparators(plugin.path)});
        item->setIcon(NameColumn, style()->standardIcon(iconOf(plugin.state)));
        item->setToolTip(FileColumn, item->text(FileColumn));
        if (plugin.trouble.isEmpty())
            continue;
        item->setToolTip(NameColumn, plugin.trouble);
        troubles.append(
            QStringLiteral("<li><b>%1</b>: %2</li>").arg(plugin.name, plugin.trouble.toHtmlEscaped()));
    }
    const QStringList others = m_catalog.otherTroubles();
    for (const QString &trouble : others)
        troubles.append(
            QStringLiteral("<li><b>%1</b>: %2</li>").arg(tr("A plug-in"), trouble.toHtmlEscaped()));
    const int troubled = m_catalog.troubled().size();
    const int libraries = m_catalog.libraryCount();
    m_summary->setText(troubled ? tr("Plug-ins that need attention: %1 of %2").arg(troubled).arg(libraries)
                                : tr("All %1 plug-ins are loaded, by %2 entries of the lists")
                                      .arg(libraries)
                                      .arg(plugins.size()));
    for (const int column : {NameColumn, SetColumn, StateColumn, VersionColumn})
        m_list->resizeColumnToContents(column);
    m_troubles->setText(QStringLiteral("<ul>%1</ul>").arg(troubles.join(QString())));
    m_troubles->setVisible(!troubles.isEmpty());
}
