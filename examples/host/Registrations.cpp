#include "Registrations.h"

#include <pluginManger4CAM.h>

#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <type_traits>

namespace {

/// The element's type is what the operation returns a pointer to.
template <typename Call>
Registration registration(const char *operation, const char *library, Call call, Place place)
{
    using Result = std::invoke_result_t<Call, QTpluginsManger4CAM *, QWidget *>;
    return {operation, library, &std::remove_pointer_t<Result>::staticMetaObject,
            [call](QTpluginsManger4CAM *manager, QWidget *parent) -> QObject * {
                return std::invoke(call, manager, parent);
            },
            place};
}

}

std::vector<Registration> registrations(const std::string &jobName)
{
    using Manager = QTpluginsManger4CAM;

    // These three take more than a parent.
    const auto matrixEditMenu = [jobName](Manager *manager, QWidget *parent) {
        return manager->Ov_RegisterMatrix_Edit_Menu(parent, jobName);
    };
    const auto matrixTable = [jobName](Manager *manager, QWidget *parent) {
        return manager->Ov_RegisterMatrix_Table(parent, jobName);
    };
    const auto ruleCheck = [](Manager *manager, QWidget *parent) {
        return manager->Ov_Register_Common("DFM_RuleCheck.dll", parent);
    };

    // clang-format off
    return {
        // The CAM workspace: the window's own menu bar, and the part numbers on the left.
        registration("Ov_RegisterCAMMenuFile", "CAM_MenuBar_Menu.dll", &Manager::Ov_RegisterCAMMenuFile, Place::CamMenus),
        registration("Ov_RegisterCAMMenuAction", "CAM_MenuBar_Actions.dll", &Manager::Ov_RegisterCAMMenuAction, Place::CamMenus),
        registration("Ov_RegisterCAMMenuOptions", "CAM_MenuBar_Options.dll", &Manager::Ov_RegisterCAMMenuOptions, Place::CamMenus),
        registration("Ov_RegisterCAM_Common_MenuBar_Info", "Common_MenuBar_Info.dll", &Manager::Ov_RegisterCAM_Common_MenuBar_Info, Place::MenuBarEnd),
        registration("Ov_RegisterCAM_FilterAndInfo_Bar", "CAM_FilterAndInfo_Bar.dll", &Manager::Ov_RegisterCAM_FilterAndInfo_Bar, Place::PartPanel),
        registration("Ov_RegisterCAM_PNDATA_VIEW", "CAM_PNData_View.dll", &Manager::Ov_RegisterCAM_PNDATA_VIEW, Place::PartPanel),
        registration("OvDI_RegisterGraphic_JobList", "ListBar_PNList.dll", &Manager::OvDI_RegisterGraphic_JobList, Place::LeftDocks),
        registration("Ov_RegisterCAM_Progress_Dialog", "CAM_Progress_Dialog.dll", &Manager::Ov_RegisterCAM_Progress_Dialog, Place::StatusBarEnd),

        // The graphic editor, in the middle.
        registration("Ov_RegisterGraphic_Menu_File", "Graphic_MenuBar_File.dll", &Manager::Ov_RegisterGraphic_Menu_File, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_Edit_Menu", "Graphic_MenuBar_Edit.dll", &Manager::Ov_RegisterGraphic_Edit_Menu, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_Actions_Menu", "Graphic_MenuBar_Actions.dll", &Manager::Ov_RegisterGraphic_Actions_Menu, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_MenuBar_Step", "Graphic_MenuBar_Step.dll", &Manager::Ov_RegisterGraphic_MenuBar_Step, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_Analysis_Menu", "Graphic_MenuBar_Analysis.dll", &Manager::Ov_RegisterGraphic_Analysis_Menu, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_MenuBar_ROUT", "Graphic_MenuBar_Rout.dll", &Manager::Ov_RegisterGraphic_MenuBar_ROUT, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_MenuBar_DFM", "Graphic_MenuBar_DFM.dll", &Manager::Ov_RegisterGraphic_MenuBar_DFM, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_CamDI", "Graphic_CamDI.dll", &Manager::Ov_RegisterGraphic_CamDI, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_MenuBar_Other", "Graphic_MenuBar_Others.dll", &Manager::Ov_RegisterGraphic_MenuBar_Other, Place::GraphicMenus),
        registration("Ov_RegisterGraphic_DI_Tool", "Graphic_DI_Tool.dll", &Manager::Ov_RegisterGraphic_DI_Tool, Place::ToolBars),
        registration("Ov_RegisterGraphic_View", "Graphic_View.dll", &Manager::Ov_RegisterGraphic_View, Place::GraphicCenter),
        registration("Ov_RegisterGraphic_Tool_move", "Graphic_Toolbar_Move.dll", &Manager::Ov_RegisterGraphic_Tool_move, Place::MoveTools),
        registration("Ov_RegisterGraphic_Tool_Edit", "Graphic_Toolbar_Edit.dll", &Manager::Ov_RegisterGraphic_Tool_Edit, Place::EditTools),
        registration("Ov_RegisterGraphic_Coordinate", "Graphic_Coordinate.dll", &Manager::Ov_RegisterGraphic_Coordinate, Place::GraphicBottom),
        registration("Ov_RegisterGraphic_JobList", "Graphic_JobList.dll", &Manager::Ov_RegisterGraphic_JobList, Place::LeftDocks),
        registration("Ov_RegisterGraphic_MiniMap", "Graphic_MiniMap.dll", &Manager::Ov_RegisterGraphic_MiniMap, Place::Overview),
        registration("Ov_RegisterGraphic_Tips", "Graphic_Tips.dll", &Manager::Ov_RegisterGraphic_Tips, Place::StatusBar),

        // The layer matrix, below the editor.
        registration("Ov_RegisterMatrix_File_Menu", "Matrix_MenuBar.dll", &Manager::Ov_RegisterMatrix_File_Menu, Place::MatrixMenus),
        registration("Ov_RegisterMatrix_Edit_Menu", "MATRIX_MENUBAR_Edit.dll", matrixEditMenu, Place::MatrixMenus),
        registration("Ov_RegisterMatrix_Option_Menu", "MATRIX_MENUBAR_Option.dll", &Manager::Ov_RegisterMatrix_Option_Menu, Place::MatrixMenus),
        registration("Ov_RegisterMatrix_ToolBar", "Matrix_ToolBar.dll", &Manager::Ov_RegisterMatrix_ToolBar, Place::MatrixHead),
        registration("Ov_RegisterMatrix_Table", "Matrix.dll", matrixTable, Place::MatrixCenter),

        // The DFM workspace, on the right.
        registration("Ov_RegisterDFM_Edit_Menu", "DFM_MenuBar_Edit.dll", &Manager::Ov_RegisterDFM_Edit_Menu, Place::DfmMenus),
        registration("Ov_RegisterDFM_View_Menu", "DFM_MenuBar_View.dll", &Manager::Ov_RegisterDFM_View_Menu, Place::DfmMenus),
        registration("Ov_RegisterDFM_Operate_Menu", "DFM_MenuBar_Operate.dll", &Manager::Ov_RegisterDFM_Operate_Menu, Place::DfmMenus),
        registration("Ov_Register_Common", "DFM_RuleCheck.dll", ruleCheck, Place::DfmPanel),
        registration("Ov_RegisterGraphic_JobList2", "DFM_Graphic_AnalysisTab.dll", &Manager::Ov_RegisterGraphic_JobList2, Place::RightDocks),
    };
    // clang-format on
}
