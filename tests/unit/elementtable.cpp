#include "elementtable.h"

#include "pluginManger4CAM.h"

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

namespace {

using Manager = QTpluginsManger4CAM;

// The explicit element type makes each row check its operation's return type: a pointer to a member that
// returns anything else does not convert.

template <typename Element>
ElementRow row(const char *operation, const char *library, const char *symbol,
               Element *(Manager::*member)(QWidget *))
{
    return {operation,
            QString::fromLatin1(library),
            QString::fromLatin1(symbol),
            Element::staticMetaObject.className(),
            false,
            [member](QWidget *parent, const std::string &) -> void * {
                return (Manager::instance()->*member)(parent);
            }};
}

template <typename Element>
ElementRow row(const char *operation, const char *library, const char *symbol,
               Element *(Manager::*member)(QWidget *, const std::string &))
{
    return {operation,
            QString::fromLatin1(library),
            QString::fromLatin1(symbol),
            Element::staticMetaObject.className(),
            true,
            [member](QWidget *parent, const std::string &text) -> void * {
                return (Manager::instance()->*member)(parent, text);
            }};
}

ElementRow commonRow(QObject *(Manager::*member)(std::string, QWidget *))
{
    return {"Ov_Register_Common",
            QStringLiteral("Any_Library.dll"),
            QStringLiteral("GetPluginDFMInstance"),
            "QObject",
            false,
            [member](QWidget *parent, const std::string &) -> void * {
                return (Manager::instance()->*member)("Any_Library.dll", parent);
            }};
}

}

QList<ElementRow> elementTable()
{
    return {
        row<QDockWidget>("OvDI_RegisterGraphic_JobList", "ListBar_PNList.dll", "GetPluginInstance",
                         &Manager::OvDI_RegisterGraphic_JobList),
        row<QMenu>("Ov_RegisterCAMMenuAction", "CAM_MenuBar_Actions.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterCAMMenuAction),
        row<QMenu>("Ov_RegisterCAMMenuFile", "CAM_MenuBar_Menu.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterCAMMenuFile),
        row<QMenu>("Ov_RegisterCAMMenuOptions", "CAM_MenuBar_Options.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterCAMMenuOptions),
        row<QWidget>("Ov_RegisterCAM_Common_MenuBar_Info", "Common_MenuBar_Info.dll", "GetPluginInstance",
                     &Manager::Ov_RegisterCAM_Common_MenuBar_Info),
        row<QVBoxLayout>("Ov_RegisterCAM_FilterAndInfo_Bar", "CAM_FilterAndInfo_Bar.dll", "GetPluginInstance",
                         &Manager::Ov_RegisterCAM_FilterAndInfo_Bar),
        row<QScrollArea>("Ov_RegisterCAM_PNDATA_VIEW", "CAM_PNData_View.dll", "GetPluginInstance",
                         &Manager::Ov_RegisterCAM_PNDATA_VIEW),
        row<QObject>("Ov_RegisterCAM_Progress_Dialog", "CAM_Progress_Dialog.dll", "GetPluginInstance",
                     &Manager::Ov_RegisterCAM_Progress_Dialog),
        row<QMenu>("Ov_RegisterDFM_Edit_Menu", "DFM_MenuBar_Edit.dll", "GetPluginDFMInstance",
                   &Manager::Ov_RegisterDFM_Edit_Menu),
        row<QMenu>("Ov_RegisterDFM_Operate_Menu", "DFM_MenuBar_Operate.dll", "GetPluginDFMInstance",
                   &Manager::Ov_RegisterDFM_Operate_Menu),
        row<QMenu>("Ov_RegisterDFM_View_Menu", "DFM_MenuBar_View.dll", "GetPluginDFMInstance",
                   &Manager::Ov_RegisterDFM_View_Menu),
        row<QMenu>("Ov_RegisterGraphic_Actions_Menu", "Graphic_MenuBar_Actions.dll",
                   "GetPluginGraphicMenuBarActionsInstance", &Manager::Ov_RegisterGraphic_Actions_Menu),
        row<QMenu>("Ov_RegisterGraphic_Analysis_Menu", "Graphic_MenuBar_Analysis.dll",
                   "GetPluginAnalysisInstance", &Manager::Ov_RegisterGraphic_Analysis_Menu),
        row<QMenu>("Ov_RegisterGraphic_CamDI", "Graphic_CamDI.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterGraphic_CamDI),
        row<QHBoxLayout>("Ov_RegisterGraphic_Coordinate", "Graphic_Coordinate.dll",
                         "GetGraphic_CoordinateInstance", &Manager::Ov_RegisterGraphic_Coordinate),
        row<QToolBar>("Ov_RegisterGraphic_DI_Tool", "Graphic_DI_Tool.dll", "GetPluginDITollInstance",
                      &Manager::Ov_RegisterGraphic_DI_Tool),
        row<QMenu>("Ov_RegisterGraphic_Edit_Menu", "Graphic_MenuBar_Edit.dll", "GetEditInstance",
                   &Manager::Ov_RegisterGraphic_Edit_Menu),
        row<QDockWidget>("Ov_RegisterGraphic_JobList2", "DFM_Graphic_AnalysisTab.dll", "GetPluginDFMInstance",
                         &Manager::Ov_RegisterGraphic_JobList2),
        row<QDockWidget>("Ov_RegisterGraphic_JobList", "Graphic_JobList.dll", "GetPluginInstance",
                         &Manager::Ov_RegisterGraphic_JobList),
        row<QMenu>("Ov_RegisterGraphic_MenuBar_DFM", "Graphic_MenuBar_DFM.dll", "GetPluginDFMInstance",
                   &Manager::Ov_RegisterGraphic_MenuBar_DFM),
        row<QMenu>("Ov_RegisterGraphic_MenuBar_Other", "Graphic_MenuBar_Others.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterGraphic_MenuBar_Other),
        row<QMenu>("Ov_RegisterGraphic_MenuBar_ROUT", "Graphic_MenuBar_Rout.dll", "GetPluginROUTInstance",
                   &Manager::Ov_RegisterGraphic_MenuBar_ROUT),
        row<QMenu>("Ov_RegisterGraphic_MenuBar_Step", "Graphic_MenuBar_Step.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterGraphic_MenuBar_Step),
        row<QMenu>("Ov_RegisterGraphic_Menu_File", "Graphic_MenuBar_File.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterGraphic_Menu_File),
        row<QWidget>("Ov_RegisterGraphic_MiniMap", "Graphic_MiniMap.dll", "GetGraphic_MiniMapInstance",
                     &Manager::Ov_RegisterGraphic_MiniMap),
        row<QWidget>("Ov_RegisterGraphic_Tips", "Graphic_Tips.dll", "GetGraphic_TipsInstance",
                     &Manager::Ov_RegisterGraphic_Tips),
        row<QGridLayout>("Ov_RegisterGraphic_Tool_Edit", "Graphic_Toolbar_Edit.dll", "GetPluginInstance",
                         &Manager::Ov_RegisterGraphic_Tool_Edit),
        row<QGridLayout>("Ov_RegisterGraphic_Tool_move", "Graphic_Toolbar_Move.dll", "GetPluginInstance",
                         &Manager::Ov_RegisterGraphic_Tool_move),
        row<QWidget>("Ov_RegisterGraphic_View", "Graphic_View.dll", "GetViewInstance",
                     &Manager::Ov_RegisterGraphic_View),
        row<QMenu>("Ov_RegisterMatrix_Edit_Menu", "MATRIX_MENUBAR_Edit.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterMatrix_Edit_Menu),
        row<QMenu>("Ov_RegisterMatrix_File_Menu", "Matrix_MenuBar.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterMatrix_File_Menu),
        row<QMenu>("Ov_RegisterMatrix_Option_Menu", "MATRIX_MENUBAR_Option.dll", "GetPluginInstance",
                   &Manager::Ov_RegisterMatrix_Option_Menu),
        row<QWidget>("Ov_RegisterMatrix_Table", "Matrix.dll", "GetMatrixInstance",
                     &Manager::Ov_RegisterMatrix_Table),
        row<QWidget>("Ov_RegisterMatrix_ToolBar", "Matrix_ToolBar.dll", "GetMatrix_ToolBarInstance",
                     &Manager::Ov_RegisterMatrix_ToolBar),
        commonRow(&Manager::Ov_Register_Common),
    };
}
