#pragma once

#include <QtCore/QtGlobal>

/// An entry of a menu, tool bar or grid of buttons. Its command is its text as one word: "Zoom in" is
/// "zoomIn".
struct Entry
{
    const char *text;
    const char *shortcut;
};

/// What a library's element is called and what is in it, as far as the first entry without a text. An entry
/// without letters is a separator. Texts are translated in the context "Entries".
struct SimpleElement
{
    const char *library;
    const char *title;
    Entry entries[12];
};

constexpr Entry separator{"-", ""};

constexpr SimpleElement simpleElements[] = {
    // The window
    {"CAM_MenuBar_Menu",
     QT_TRANSLATE_NOOP("Entries", "File"),
     {{QT_TRANSLATE_NOOP("Entries", "Open job"), "Ctrl+O"},
      {QT_TRANSLATE_NOOP("Entries", "Preview job"), "Ctrl+Shift+O"},
      {QT_TRANSLATE_NOOP("Entries", "Close job"), "Ctrl+W"},
      {QT_TRANSLATE_NOOP("Entries", "Close all jobs"), "Ctrl+Shift+W"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Exit"), "Ctrl+Q"}}},
    {"CAM_MenuBar_Actions",
     QT_TRANSLATE_NOOP("Entries", "Actions"),
     {{QT_TRANSLATE_NOOP("Entries", "Lock job"), "Ctrl+L"},
      {QT_TRANSLATE_NOOP("Entries", "Unlock job"), "Ctrl+Shift+L"},
      {QT_TRANSLATE_NOOP("Entries", "Set text"), "Ctrl+T"}}},
    {"CAM_MenuBar_Options",
     QT_TRANSLATE_NOOP("Entries", "Options"),
     {{QT_TRANSLATE_NOOP("Entries", "Millimetres"), "Alt+M"},
      {QT_TRANSLATE_NOOP("Entries", "Inches"), "Alt+I"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Reload DFM plugins"), "Ctrl+F5"},
      {QT_TRANSLATE_NOOP("Entries", "Reload desktop tools"), "Ctrl+F6"}}},
    {"Graphic_DI_Tool",
     QT_TRANSLATE_NOOP("Entries", "Imaging"),
     {{QT_TRANSLATE_NOOP("Entries", "Top copper"), "Ctrl+Alt+1"},
      {QT_TRANSLATE_NOOP("Entries", "Bottom copper"), "Ctrl+Alt+2"},
      {QT_TRANSLATE_NOOP("Entries", "Top mask"), "Ctrl+Alt+3"},
      {QT_TRANSLATE_NOOP("Entries", "Bottom mask"), "Ctrl+Alt+4"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Negative"), "Ctrl+I"},
      {QT_TRANSLATE_NOOP("Entries", "Send to imager"), "Ctrl+Return"}}},

    // The graphic editor
    {"Graphic_MenuBar_File",
     QT_TRANSLATE_NOOP("Entries", "File"),
     {{QT_TRANSLATE_NOOP("Entries", "Save picture"), "Ctrl+S"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Rename job"), "F2"},
      {QT_TRANSLATE_NOOP("Entries", "Delete job"), "Ctrl+Shift+Del"}}},
    {"Graphic_MenuBar_Edit",
     QT_TRANSLATE_NOOP("Entries", "Edit"),
     {{QT_TRANSLATE_NOOP("Entries", "Select all"), "Ctrl+A"},
      {QT_TRANSLATE_NOOP("Entries", "Clear selection"), "Esc"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Hide selected"), "Del"},
      {QT_TRANSLATE_NOOP("Entries", "Show hidden"), "Ctrl+Z"}}},
    {"Graphic_MenuBar_Actions",
     QT_TRANSLATE_NOOP("Entries", "Actions"),
     {{QT_TRANSLATE_NOOP("Entries", "Compare with"), "Ctrl+D"},
      {QT_TRANSLATE_NOOP("Entries", "End comparison"), "Ctrl+Shift+D"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Measure"), "M"}}},
    {"Graphic_MenuBar_Step",
     QT_TRANSLATE_NOOP("Entries", "Step"),
     {{QT_TRANSLATE_NOOP("Entries", "Next step"), "Ctrl+PgDown"},
      {QT_TRANSLATE_NOOP("Entries", "Previous step"), "Ctrl+PgUp"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Rename step"), "Shift+F2"},
      {QT_TRANSLATE_NOOP("Entries", "Delete step"), "Shift+Del"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Check step"), "F6"}}},
    {"Graphic_MenuBar_Analysis",
     QT_TRANSLATE_NOOP("Entries", "Layers"),
     {{QT_TRANSLATE_NOOP("Entries", "All layers"), "Ctrl+0"},
      {QT_TRANSLATE_NOOP("Entries", "Signal layers"), "Ctrl+Alt+S"},
      {QT_TRANSLATE_NOOP("Entries", "Drill layers"), "Ctrl+Alt+D"},
      {QT_TRANSLATE_NOOP("Entries", "Solder mask"), "Ctrl+Alt+M"},
      {QT_TRANSLATE_NOOP("Entries", "Silk screen"), "Ctrl+Alt+K"}}},
    {"Graphic_MenuBar_Rout",
     QT_TRANSLATE_NOOP("Entries", "Rout"),
     {{QT_TRANSLATE_NOOP("Entries", "Rout layer"), "Ctrl+Alt+R"},
      {QT_TRANSLATE_NOOP("Entries", "Path length"), "Ctrl+R"}}},
    {"Graphic_MenuBar_DFM",
     QT_TRANSLATE_NOOP("Entries", "DFM"),
     {{QT_TRANSLATE_NOOP("Entries", "Show findings"), "Ctrl+F"},
      {QT_TRANSLATE_NOOP("Entries", "Hide findings"), "Ctrl+Shift+F"}}},
    {"Graphic_CamDI",
     QT_TRANSLATE_NOOP("Entries", "Imaging"),
     {{QT_TRANSLATE_NOOP("Entries", "Positive image"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Negative image"), ""}}},
    {"Graphic_MenuBar_Others",
     QT_TRANSLATE_NOOP("Entries", "View"),
     {{QT_TRANSLATE_NOOP("Entries", "Grid"), "G"},
      {QT_TRANSLATE_NOOP("Entries", "Count features"), "Ctrl+U"}}},
    {"Graphic_Toolbar_Edit",
     QT_TRANSLATE_NOOP("Entries", "Edit"),
     {{QT_TRANSLATE_NOOP("Entries", "Select all"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Clear selection"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Hide selected"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Show hidden"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Measure"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Grid"), ""}}},
    {"Graphic_Toolbar_Move",
     QT_TRANSLATE_NOOP("Entries", "Move"),
     {{QT_TRANSLATE_NOOP("Entries", "Zoom in"), "Ctrl++"},
      {QT_TRANSLATE_NOOP("Entries", "Zoom out"), "Ctrl+-"},
      {QT_TRANSLATE_NOOP("Entries", "Fit"), "Home"},
      {QT_TRANSLATE_NOOP("Entries", "Left"), "Alt+Left"},
      {QT_TRANSLATE_NOOP("Entries", "Right"), "Alt+Right"},
      {QT_TRANSLATE_NOOP("Entries", "Up"), "Alt+Up"},
      {QT_TRANSLATE_NOOP("Entries", "Down"), "Alt+Down"},
      {QT_TRANSLATE_NOOP("Entries", "All layers"), ""}}},

    // The layer matrix
    {"Matrix_MenuBar",
     QT_TRANSLATE_NOOP("Entries", "File"),
     {{QT_TRANSLATE_NOOP("Entries", "Save matrix"), "Ctrl+Shift+S"},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Rename job"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Delete job"), ""}}},
    {"MATRIX_MENUBAR_Edit",
     QT_TRANSLATE_NOOP("Entries", "Edit"),
     {{QT_TRANSLATE_NOOP("Entries", "Row up"), "Ctrl+Up"},
      {QT_TRANSLATE_NOOP("Entries", "Row down"), "Ctrl+Down"}}},
    {"MATRIX_MENUBAR_Option",
     QT_TRANSLATE_NOOP("Entries", "Options"),
     {{QT_TRANSLATE_NOOP("Entries", "Show counts"), ""}, {QT_TRANSLATE_NOOP("Entries", "Hide counts"), ""}}},
    {"Matrix_ToolBar",
     QT_TRANSLATE_NOOP("Entries", "Layers"),
     {{QT_TRANSLATE_NOOP("Entries", "Row up"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Row down"), ""},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Show all"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Hide all"), ""}}},

    // The DFM workspace
    {"DFM_MenuBar_Edit",
     QT_TRANSLATE_NOOP("Entries", "Edit"),
     {{QT_TRANSLATE_NOOP("Entries", "Erase results"), "Shift+F5"}}},
    {"DFM_MenuBar_View",
     QT_TRANSLATE_NOOP("Entries", "View"),
     {{QT_TRANSLATE_NOOP("Entries", "All results"), ""},
      {QT_TRANSLATE_NOOP("Entries", "Violations only"), ""}}},
    {"DFM_MenuBar_Operate",
     QT_TRANSLATE_NOOP("Entries", "Operate"),
     {{QT_TRANSLATE_NOOP("Entries", "Run checks"), "F5"},
      {QT_TRANSLATE_NOOP("Entries", "Stop"), "Ctrl+."},
      separator,
      {QT_TRANSLATE_NOOP("Entries", "Export report"), "Ctrl+E"}}},
};
