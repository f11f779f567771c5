#pragma once

#include <array>

class QDockWidget;
class QGridLayout;
class QHBoxLayout;
class QMenu;
class QObject;
class QScrollArea;
class QToolBar;
class QVBoxLayout;
class QWidget;

namespace PluginMangerInternal {

/**
 * The factories of user-interface elements: which library makes which type of element through which
 * function. The managers and the tools that check plug-in sets read these rows, and nothing else.
 */

/// A function that takes the parent widget and returns an `Element *` as an untyped pointer.
template <typename Element>
struct ElementFactory
{
    const char *library;
    const char *symbol;
};

/// The same for a function that takes a text, a const QString reference, after the parent widget.
template <typename Element>
struct TextElementFactory
{
    const char *library;
    const char *symbol;
};

/// Each row is named after the operation that registers its element.
namespace ElementFactories {

inline constexpr ElementFactory<QDockWidget> DI_Graphic_JobList{"ListBar_PNList.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> CAMMenuAction{"CAM_MenuBar_Actions.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> CAMMenuFile{"CAM_MenuBar_Menu.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> CAMMenuOptions{"CAM_MenuBar_Options.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QWidget> CAM_Common_MenuBar_Info{"Common_MenuBar_Info.dll",
                                                                 "GetPluginInstance"};
inline constexpr ElementFactory<QVBoxLayout> CAM_FilterAndInfo_Bar{"CAM_FilterAndInfo_Bar.dll",
                                                                   "GetPluginInstance"};
inline constexpr ElementFactory<QScrollArea> CAM_PNDATA_VIEW{"CAM_PNData_View.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QObject> CAM_Progress_Dialog{"CAM_Progress_Dialog.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> DFM_Edit_Menu{"DFM_MenuBar_Edit.dll", "GetPluginDFMInstance"};
inline constexpr ElementFactory<QMenu> DFM_Operate_Menu{"DFM_MenuBar_Operate.dll", "GetPluginDFMInstance"};
inline constexpr ElementFactory<QMenu> DFM_View_Menu{"DFM_MenuBar_View.dll", "GetPluginDFMInstance"};
inline constexpr ElementFactory<QMenu> Graphic_Actions_Menu{"Graphic_MenuBar_Actions.dll",
                                                            "GetPluginGraphicMenuBarActionsInstance"};
inline constexpr ElementFactory<QMenu> Graphic_Analysis_Menu{"Graphic_MenuBar_Analysis.dll",
                                                             "GetPluginAnalysisInstance"};
inline constexpr ElementFactory<QMenu> Graphic_CamDI{"Graphic_CamDI.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QHBoxLayout> Graphic_Coordinate{"Graphic_Coordinate.dll",
                                                                "GetGraphic_CoordinateInstance"};
inline constexpr ElementFactory<QToolBar> Graphic_DI_Tool{"Graphic_DI_Tool.dll", "GetPluginDITollInstance"};
inline constexpr ElementFactory<QMenu> Graphic_Edit_Menu{"Graphic_MenuBar_Edit.dll", "GetEditInstance"};
inline constexpr ElementFactory<QDockWidget> Graphic_JobList2{"DFM_Graphic_AnalysisTab.dll",
                                                              "GetPluginDFMInstance"};
inline constexpr ElementFactory<QDockWidget> Graphic_JobList{"Graphic_JobList.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> Graphic_MenuBar_DFM{"Graphic_MenuBar_DFM.dll", "GetPluginDFMInstance"};
inline constexpr ElementFactory<QMenu> Graphic_MenuBar_Other{"Graphic_MenuBar_Others.dll",
                                                             "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> Graphic_MenuBar_ROUT{"Graphic_MenuBar_Rout.dll",
                                                            "GetPluginROUTInstance"};
inline constexpr ElementFactory<QMenu> Graphic_MenuBar_Step{"Graphic_MenuBar_Step.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> Graphic_Menu_File{"Graphic_MenuBar_File.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QWidget> Graphic_MiniMap{"Graphic_MiniMap.dll", "GetGraphic_MiniMapInstance"};
inline constexpr ElementFactory<QWidget> Graphic_Tips{"Graphic_Tips.dll", "GetGraphic_TipsInstance"};
inline constexpr ElementFactory<QGridLayout> Graphic_Tool_Edit{"Graphic_Toolbar_Edit.dll",
                                                               "GetPluginInstance"};
inline constexpr ElementFactory<QGridLayout> Graphic_Tool_move{"Graphic_Toolbar_Move.dll",
                                                               "GetPluginInstance"};
inline constexpr ElementFactory<QWidget> Graphic_View{"Graphic_View.dll", "GetViewInstance"};
inline constexpr TextElementFactory<QMenu> Matrix_Edit_Menu{"MATRIX_MENUBAR_Edit.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> Matrix_File_Menu{"Matrix_MenuBar.dll", "GetPluginInstance"};
inline constexpr ElementFactory<QMenu> Matrix_Option_Menu{"MATRIX_MENUBAR_Option.dll", "GetPluginInstance"};
inline constexpr TextElementFactory<QWidget> Matrix_Table{"Matrix.dll", "GetMatrixInstance"};
inline constexpr ElementFactory<QWidget> Matrix_ToolBar{"Matrix_ToolBar.dll", "GetMatrix_ToolBarInstance"};
/// Any library may bring this one, so the row names none.
inline constexpr ElementFactory<QObject> Common{nullptr, "GetPluginDFMInstance"};

}

/// A row without its element type, for those who only read names.
struct ElementFactoryNames
{
    const char *library;
    const char *symbol;
};

template <typename Factory>
constexpr ElementFactoryNames namesOf(const Factory &factory)
{
    return {factory.library, factory.symbol};
}

inline constexpr std::array elementFactoryNames{
    namesOf(ElementFactories::DI_Graphic_JobList),
    namesOf(ElementFactories::CAMMenuAction),
    namesOf(ElementFactories::CAMMenuFile),
    namesOf(ElementFactories::CAMMenuOptions),
    namesOf(ElementFactories::CAM_Common_MenuBar_Info),
    namesOf(ElementFactories::CAM_FilterAndInfo_Bar),
    namesOf(ElementFactories::CAM_PNDATA_VIEW),
    namesOf(ElementFactories::CAM_Progress_Dialog),
    namesOf(ElementFactories::DFM_Edit_Menu),
    namesOf(ElementFactories::DFM_Operate_Menu),
    namesOf(ElementFactories::DFM_View_Menu),
    namesOf(ElementFactories::Graphic_Actions_Menu),
    namesOf(ElementFactories::Graphic_Analysis_Menu),
    namesOf(ElementFactories::Graphic_CamDI),
    namesOf(ElementFactories::Graphic_Coordinate),
    namesOf(ElementFactories::Graphic_DI_Tool),
    namesOf(ElementFactories::Graphic_Edit_Menu),
    namesOf(ElementFactories::Graphic_JobList2),
    namesOf(ElementFactories::Graphic_JobList),
    namesOf(ElementFactories::Graphic_MenuBar_DFM),
    namesOf(ElementFactories::Graphic_MenuBar_Other),
    namesOf(ElementFactories::Graphic_MenuBar_ROUT),
    namesOf(ElementFactories::Graphic_MenuBar_Step),
    namesOf(ElementFactories::Graphic_Menu_File),
    namesOf(ElementFactories::Graphic_MiniMap),
    namesOf(ElementFactories::Graphic_Tips),
    namesOf(ElementFactories::Graphic_Tool_Edit),
    namesOf(ElementFactories::Graphic_Tool_move),
    namesOf(ElementFactories::Graphic_View),
    namesOf(ElementFactories::Matrix_Edit_Menu),
    namesOf(ElementFactories::Matrix_File_Menu),
    namesOf(ElementFactories::Matrix_Option_Menu),
    namesOf(ElementFactories::Matrix_Table),
    namesOf(ElementFactories::Matrix_ToolBar),
    namesOf(ElementFactories::Common),
};

static_assert(elementFactoryNames.size() == 35, "every registration has its row");

}
