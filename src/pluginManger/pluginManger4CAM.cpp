#include "pluginManger4CAM.h"

#include "common.h"
#include "private/elementFactories_p.h"
#include "private/logTexts_p.h"
#include "private/registry_p.h"
#include "private/resolve_p.h"

#include <QtCore/QDir>
#include <QtCore/QLibrary>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <glog/logging.h>

#include <exception>

namespace {

QString configFile(const QString &fileName)
{
    const QString base = QString::fromStdString(Common::getPath());
    const QString directory = QString::fromStdString(Common::getPath_pluginconfig());
    return (base.isEmpty() ? QDir::currentPath() : base) + QLatin1Char('/') + directory + QLatin1Char('/')
           + fileName;
}

}

QTpluginsManger4CAM *QTpluginsManger4CAM::m_instance4CAM = nullptr;

QTpluginsManger4CAM *QTpluginsManger4CAM::instance()
{
    if (!m_instance4CAM)
        m_instance4CAM = new QTpluginsManger4CAM;
    return m_instance4CAM;
}

bool QTpluginsManger4CAM::loadAllPlugins()
{
    readPluginConfig(m_private, configFile(QStringLiteral("pluginconfig4CAM.json")));
    loadListedLibraries(m_private);
    m_bCAMLoaded = true;
    return true;
}

bool QTpluginsManger4CAM::loadAllDFMPlugins()
{
    QTPluginsMangerPrivate description;
    readPluginConfig(description, configFile(QStringLiteral("pluginconfig4DFM.json")));
    loadListedLibraries(description);
    m_bDFMLoaded = true;
    return true;
}

bool QTpluginsManger4CAM::isCAMLoaded() const
{
    return m_bCAMLoaded;
}

bool QTpluginsManger4CAM::isDFMLoaded() const
{
    return m_bDFMLoaded;
}

QLibrary *QTpluginsManger4CAM::plugin(const QString &name) const
{
    return findLibrary(m_private, name);
}

void QTpluginsManger4CAM::insertRoot(const std::string &name, void *root)
{
    try {
        registry().appendRecord({RecordKind::engineerRoot, name, root, nullptr});
    } catch (const std::exception &) {
        LOG(ERROR) << "insertRoot error.";
    }
}

void *QTpluginsManger4CAM::getRoot()
{
    return registry().findRootRecord().object;
}

bool QTpluginsManger4CAM::Ov_isRegisterFrame(void *)
{
    return true;
}

void QTpluginsManger4CAM::Ov_RegisterClear() {}

QDockWidget *QTpluginsManger4CAM::OvDI_RegisterGraphic_JobList(QWidget *parent)
{
    return registerElement(ElementFactories::DI_Graphic_JobList, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuAction(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuAction, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuFile(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuFile, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterCAMMenuOptions(QWidget *parent)
{
    return registerElement(ElementFactories::CAMMenuOptions, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterCAM_Common_MenuBar_Info(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_Common_MenuBar_Info, parent);
}

QVBoxLayout *QTpluginsManger4CAM::Ov_RegisterCAM_FilterAndInfo_Bar(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_FilterAndInfo_Bar, parent);
}

QScrollArea *QTpluginsManger4CAM::Ov_RegisterCAM_PNDATA_VIEW(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_PNDATA_VIEW, parent);
}

QObject *QTpluginsManger4CAM::Ov_RegisterCAM_Progress_Dialog(QWidget *parent)
{
    return registerElement(ElementFactories::CAM_Progress_Dialog, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_Edit_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_Edit_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_Operate_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_Operate_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterDFM_View_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::DFM_View_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Actions_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Actions_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Analysis_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Analysis_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_CamDI(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_CamDI, parent);
}

QHBoxLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Coordinate(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Coordinate, parent);
}

QToolBar *QTpluginsManger4CAM::Ov_RegisterGraphic_DI_Tool(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_DI_Tool, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Edit_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Edit_Menu, parent);
}

QDockWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_JobList2(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_JobList2, parent);
}

QDockWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_JobList(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_JobList, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_DFM(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_DFM, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_Other(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_Other, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_ROUT(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_ROUT, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_MenuBar_Step(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MenuBar_Step, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterGraphic_Menu_File(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Menu_File, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_MiniMap(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_MiniMap, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_Tips(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tips, parent);
}

QGridLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Tool_Edit(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tool_Edit, parent);
}

QGridLayout *QTpluginsManger4CAM::Ov_RegisterGraphic_Tool_move(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_Tool_move, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterGraphic_View(QWidget *parent)
{
    return registerElement(ElementFactories::Graphic_View, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_Edit_Menu(QWidget *parent, const std::string &text)
{
    return registerElement(ElementFactories::Matrix_Edit_Menu, parent, text);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_File_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_File_Menu, parent);
}

QMenu *QTpluginsManger4CAM::Ov_RegisterMatrix_Option_Menu(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_Option_Menu, parent);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterMatrix_Table(QWidget *parent, const std::string &text)
{
    return registerElement(ElementFactories::Matrix_Table, parent, text);
}

QWidget *QTpluginsManger4CAM::Ov_RegisterMatrix_ToolBar(QWidget *parent)
{
    return registerElement(ElementFactories::Matrix_ToolBar, parent);
}

QObject *QTpluginsManger4CAM::Ov_Register_Common(std::string library, QWidget *parent)
{
    return static_cast<QObject *>(
        registerElement(QString::fromStdString(library), ElementFactories::Common.symbol, parent, nullptr));
}

QTpluginsManger4CAM::QTpluginsManger4CAM() = default;

QTpluginsManger4CAM::~QTpluginsManger4CAM() = default;

void QTpluginsManger4CAM::loadListedLibraries(const QTPluginsMangerPrivate &description)
{
    // A copy, since a failed load shows a message box, and whatever runs meanwhile may read in more names.
    const QHash<QString, QVariant> names = description.m_names;
    for (const QVariant &name : names)
        loadLibraryPlugin(m_private, name.toString() + QLatin1String(".dll"));
    LOG(INFO) << LogTexts::toGbk(LogTexts::allLoaded());
}

Registry QTpluginsManger4CAM::registry()
{
    return Registry(m_registerList);
}

template <typename Element>
Element *QTpluginsManger4CAM::registerElement(const ElementFactory<Element> &factory, QWidget *parent)
{
    return static_cast<Element *>(
        registerElement(QString::fromLatin1(factory.library), factory.symbol, parent, nullptr));
}

template <typename Element>
Element *QTpluginsManger4CAM::registerElement(const TextElementFactory<Element> &factory, QWidget *parent,
                                              const std::string &text)
{
    const QString factoryText = QString::fromStdString(text);
    return static_cast<Element *>(
        registerElement(QString::fromLatin1(factory.library), factory.symbol, parent, &factoryText));
}

void *QTpluginsManger4CAM::registerElement(const QString &library, const char *symbol, QWidget *parent,
                                           const QString *text)
{
    QLibrary *const loaded = plugin(library);
    const QFunctionPointer factory = loaded ? loaded->resolve(symbol) : nullptr;
    if (!factory)
        return nullptr;

    const std::string name = library.toStdString();
    const RegisterRecord record = registry().findRecord(name, parent);
    if (!record.isEmpty())
        return record.object;

    void *const element = text ? functionAs<void *(QWidget *, const QString &)>(factory)(parent, *text)
                               : functionAs<void *(QWidget *)>(factory)(parent);
    registry().appendRecord({RecordKind::plugin, name, element, parent});
    return element;
}
