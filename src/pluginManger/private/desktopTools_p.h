#pragma once

#include <array>

class FileProcess;
class MenuBar;
class PNListInterface;
class ProcessBar_Process;
class Toolbar_Edit;
class Toolbar_Move;
class Toolbar_Select;
class Toolbar_Tool;
class ViewWidget;
class Viewbar_Status;

namespace PluginMangerInternal {

/**
 * The desktop tools: which library has which interface. The manager and the tools that check plug-in sets
 * read these rows, and nothing else.
 */
template <typename Interface>
struct DesktopTool
{
    const char *library;
};

// The spelling is what configuration files go by.
namespace DesktopTools {
inline constexpr DesktopTool<FileProcess> fileProcess{"File_Process.dll"};
inline constexpr DesktopTool<PNListInterface> pnList{"ListBar_PNList.dll"};
inline constexpr DesktopTool<Toolbar_Edit> edit{"Toolbar_Edit.dll"};
inline constexpr DesktopTool<Toolbar_Move> move{"Toolbar_Move.dll"};
inline constexpr DesktopTool<Toolbar_Select> select{"ToolBar_Select.dll"};
inline constexpr DesktopTool<Toolbar_Tool> tool{"Toolbar_Tool.dll"};
inline constexpr DesktopTool<ViewWidget> view{"Viewbar_View.dll"};
inline constexpr DesktopTool<Viewbar_Status> status{"Viewbar_Status.dll"};
inline constexpr DesktopTool<MenuBar> menuBar{"MenuBar_Menu.dll"};
/// The interface is looked for in the menu bar's object, so this library need not have it.
inline constexpr DesktopTool<ProcessBar_Process> processBar{"ProcessBar_Process.dll"};
}

inline constexpr std::array desktopToolLibraries{
    DesktopTools::fileProcess.library, DesktopTools::pnList.library, DesktopTools::edit.library,
    DesktopTools::move.library,        DesktopTools::select.library, DesktopTools::tool.library,
    DesktopTools::view.library,        DesktopTools::status.library, DesktopTools::menuBar.library,
    DesktopTools::processBar.library,
};

}
