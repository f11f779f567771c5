#include "Registrations.h"

#include <pluginManger4CAM.h>

#include <QtCore/QStringList>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <type_traits>

namespace {

using Manager = QTpluginsManger4CAM;

/// The element's type is what the operation returns a pointer to.
template <typename Call>
ElementRegistration registration(const char *operation, const char *library, Call call, FrameKind frame,
                                 Place place)
{
    constexpr bool takesJob = std::is_invocable_v<Call, Manager *, QWidget *, std::string>;
    const auto invoke = [call](Manager *manager, QWidget *parent, const std::string &job) {
        if constexpr (takesJob)
            return std::invoke(call, manager, parent, job);
        else
            return std::invoke(call, manager, parent);
    };
    using Result = std::invoke_result_t<decltype(invoke), Manager *, QWidget *, const std::string &>;
    return {operation, library, &std::remove_pointer_t<Result>::staticMetaObject, invoke, frame, place};
}

QObject *registerRuleCheck(Manager *manager, QWidget *parent)
{
    return manager->Ov_Register_Common("DFM_RuleCheck.dll", parent);
}

}

std::vector<ElementRegistration> elementRegistrations()
{
    // clang-format off
    return {
        // The CAM workspace: what belongs to no job.
        registration("Ov_RegisterCAMMenuFile", "CAM_MenuBar_Menu.dll", &Manager::Ov_RegisterCAMMenuFile, FrameKind::Root, Place::Menus),
        registration("Ov_RegisterCAMMenuAction", "CAM_MenuBar_Actions.dll", &Manager::Ov_RegisterCAMMenuAction, FrameKind::Root, Place::Menus),
        registration("Ov_RegisterCAMMenuOptions", "CAM_MenuBar_Options.dll", &Manager::Ov_RegisterCAMMenuOptions, FrameKind::Root, Place::Menus),
        registration("Ov_RegisterCAM_Common_MenuBar_Info", "Common_MenuBar_Info.dll", &Manager::Ov_RegisterCAM_Common_MenuBar_Info, FrameKind::Root, Place::MenuBarEnd),
        registration("Ov_RegisterCAM_FilterAndInfo_Bar", "CAM_FilterAndInfo_Bar.dll", &Manager::Ov_RegisterCAM_FilterAndInfo_Bar, FrameKind::Root, Place::PartPanel),
        registration("Ov_RegisterCAM_PNDATA_VIEW", "CAM_PNData_View.dll", &Manager::Ov_RegisterCAM_PNDATA_VIEW, FrameKind::Root, Place::PartPanel),
        registration("OvDI_RegisterGraphic_JobList", "ListBar_PNList.dll", &Manager::OvDI_RegisterGraphic_JobList, FrameKind::Root, Place::LeftDocks),
        registration("Ov_RegisterCAM_Progress_Dialog", "CAM_Progress_Dialog.dll", &Manager::Ov_RegisterCAM_Progress_Dialog, FrameKind::Root, Place::StatusBarEnd),
        registration("Ov_RegisterGraphic_DI_Tool", "Graphic_DI_Tool.dll", &Manager::Ov_RegisterGraphic_DI_Tool, FrameKind::Root, Place::ToolBars),
        registration("Ov_RegisterGraphic_Tips", "Graphic_Tips.dll", &Manager::Ov_RegisterGraphic_Tips, FrameKind::Root, Place::StatusBar),

        // The graphic editor.
        registration("Ov_RegisterGraphic_Menu_File", "Graphic_MenuBar_File.dll", &Manager::Ov_RegisterGraphic_Menu_File, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_Edit_Menu", "Graphic_MenuBar_Edit.dll", &Manager::Ov_RegisterGraphic_Edit_Menu, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_Actions_Menu", "Graphic_MenuBar_Actions.dll", &Manager::Ov_RegisterGraphic_Actions_Menu, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_MenuBar_Step", "Graphic_MenuBar_Step.dll", &Manager::Ov_RegisterGraphic_MenuBar_Step, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_Analysis_Menu", "Graphic_MenuBar_Analysis.dll", &Manager::Ov_RegisterGraphic_Analysis_Menu, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_MenuBar_ROUT", "Graphic_MenuBar_Rout.dll", &Manager::Ov_RegisterGraphic_MenuBar_ROUT, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_MenuBar_DFM", "Graphic_MenuBar_DFM.dll", &Manager::Ov_RegisterGraphic_MenuBar_DFM, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_CamDI", "Graphic_CamDI.dll", &Manager::Ov_RegisterGraphic_CamDI, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_MenuBar_Other", "Graphic_MenuBar_Others.dll", &Manager::Ov_RegisterGraphic_MenuBar_Other, FrameKind::Graphic, Place::Menus),
        registration("Ov_RegisterGraphic_View", "Graphic_View.dll", &Manager::Ov_RegisterGraphic_View, FrameKind::Graphic, Place::Center),
        registration("Ov_RegisterGraphic_Tool_move", "Graphic_Toolbar_Move.dll", &Manager::Ov_RegisterGraphic_Tool_move, FrameKind::Graphic, Place::MoveTools),
        registration("Ov_RegisterGraphic_Tool_Edit", "Graphic_Toolbar_Edit.dll", &Manager::Ov_RegisterGraphic_Tool_Edit, FrameKind::Graphic, Place::EditTools),
        registration("Ov_RegisterGraphic_Coordinate", "Graphic_Coordinate.dll", &Manager::Ov_RegisterGraphic_Coordinate, FrameKind::Graphic, Place::StatusBar),
        registration("Ov_RegisterGraphic_JobList", "Graphic_JobList.dll", &Manager::Ov_RegisterGraphic_JobList, FrameKind::Graphic, Place::LeftDocks),
        registration("Ov_RegisterGraphic_MiniMap", "Graphic_MiniMap.dll", &Manager::Ov_RegisterGraphic_MiniMap, FrameKind::Graphic, Place::Overview),

        // The layer matrix.
        registration("Ov_RegisterMatrix_File_Menu", "Matrix_MenuBar.dll", &Manager::Ov_RegisterMatrix_File_Menu, FrameKind::Matrix, Place::Menus),
        registration("Ov_RegisterMatrix_Edit_Menu", "MATRIX_MENUBAR_Edit.dll", &Manager::Ov_RegisterMatrix_Edit_Menu, FrameKind::Matrix, Place::Menus),
        registration("Ov_RegisterMatrix_Option_Menu", "MATRIX_MENUBAR_Option.dll", &Manager::Ov_RegisterMatrix_Option_Menu, FrameKind::Matrix, Place::Menus),
        registration("Ov_RegisterMatrix_ToolBar", "Matrix_ToolBar.dll", &Manager::Ov_RegisterMatrix_ToolBar, FrameKind::Matrix, Place::MenuBarEnd),
        registration("Ov_RegisterMatrix_Table", "Matrix.dll", &Manager::Ov_RegisterMatrix_Table, FrameKind::Matrix, Place::Center),

        // The DFM workspace.
        registration("Ov_RegisterDFM_Edit_Menu", "DFM_MenuBar_Edit.dll", &Manager::Ov_RegisterDFM_Edit_Menu, FrameKind::Dfm, Place::Menus),
        registration("Ov_RegisterDFM_View_Menu", "DFM_MenuBar_View.dll", &Manager::Ov_RegisterDFM_View_Menu, FrameKind::Dfm, Place::Menus),
        registration("Ov_RegisterDFM_Operate_Menu", "DFM_MenuBar_Operate.dll", &Manager::Ov_RegisterDFM_Operate_Menu, FrameKind::Dfm, Place::Menus),
        registration("Ov_Register_Common", "DFM_RuleCheck.dll", registerRuleCheck, FrameKind::Dfm, Place::Center),
        registration("Ov_RegisterGraphic_JobList2", "DFM_Graphic_AnalysisTab.dll", &Manager::Ov_RegisterGraphic_JobList2, FrameKind::Dfm, Place::BottomDocks),
    };
    // clang-format on
}

FrameRegistration frameRegistration(FrameKind kind, bool belongsToRoot)
{
    using Text = const std::string &;
    switch (kind) {
    case FrameKind::Graphic:
        return {"Ov_RegisterGraphicFramework", "ORVIK-GraphicEditor.dll",
                [](Manager *manager, QWidget *parent, Text job, Text step) {
                    return manager->Ov_RegisterGraphicFramework(parent, job + " | " + step, false);
                }};
    case FrameKind::Preview:
        return {"Ov_RegisterGraphicFramework4Quorel", "ORVIK-GraphicEditor.dll",
                [](Manager *manager, QWidget *parent, Text job, Text step) {
                    return manager->Ov_RegisterGraphicFramework4Quorel(parent, job, step);
                }};
    case FrameKind::Dfm:
        if (belongsToRoot)
            return {"Ov_RegisterDFMGraphicFramework", "ORVIK-GraphicEditor.dll",
                    [](Manager *manager, QWidget *parent, Text job, Text step) {
                        return manager->Ov_RegisterDFMGraphicFramework(parent, job + " | " + step + " DFM",
                                                                       false);
                    }};
        return {"Ov_RegisterDFMGraphicFramework4Quorel", "ORVIK-GraphicEditor.dll",
                [](Manager *manager, QWidget *parent, Text job, Text step) {
                    return manager->Ov_RegisterDFMGraphicFramework4Quorel(parent, job, step);
                }};
    case FrameKind::Matrix:
        return {"Ov_RegisterMatrixFramework", "ORVIK-Matrix.dll",
                [](Manager *manager, QWidget *parent, Text job, Text) {
                    return manager->Ov_RegisterMatrixFramework(parent, job);
                }};
    default:
        // Under this name, and no other, the manager finds the guide of a job.
        return {"Ov_RegisterGuideFramework", "Graphic_CamGuide.dll",
                [](Manager *manager, QWidget *parent, Text job, Text) {
                    return manager->Ov_RegisterGuideFramework(parent, job + "|Guide");
                }};
    }
}

bool isInPreview(const ElementRegistration &registration)
{
    static const QStringList libraries{
        QStringLiteral("Graphic_View.dll"), QStringLiteral("Graphic_MiniMap.dll"),
        QStringLiteral("Graphic_Coordinate.dll"), QStringLiteral("Graphic_Toolbar_Move.dll")};
    return libraries.contains(QLatin1String(registration.library));
}
