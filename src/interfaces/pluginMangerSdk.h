#pragma once

#include "PluginMetaData.h"

#include <cstddef>
#include <type_traits>

class QDockWidget;
class QGridLayout;
class QHBoxLayout;
class QMenu;
class QObject;
class QScrollArea;
class QToolBar;
class QVBoxLayout;
class QWidget;

/**
 * @file
 *
 * For authors of CAM plug-ins, whose functions are found by name and called without a check of their types:
 * with this header the compiler does the checking. Using it is optional. A plug-in that writes the same
 * functions by hand, as `extern "C"` and exported, is the same to the manager.
 *
 * The names of elements and frames below are those of the operations that register them, without
 * `Ov_Register`: what is made for `QTpluginsManger4CAM::Ov_RegisterGraphic_View` is called `Graphic_View`.
 *
 * @code
 * QWidget *makeView(QWidget *parent) { return new QLabel("A view", parent); }
 * void receive(QWidget *view, PluginMetaData message) { view->setToolTip(message.src); }
 *
 * PLUGINMANGER_FACTORY(Graphic_View, makeView)
 * PLUGINMANGER_ENTRY_POINT(Graphic_View, receive)
 * PLUGINMANGER_ABI_STAMP
 * @endcode
 */

/// Exports a function or an object of a plug-in. All others are hidden by pluginmanger_add_plugin().
#define PLUGINMANGER_PLUGIN_EXPORT Q_DECL_EXPORT

/**
 * Exports the factory of an element or a frame.
 *
 * `row` names the element or frame, `make` a function that takes what the factory takes and returns a pointer
 * to exactly the type of the element: `QMenu *make(QWidget *parent)` for most menus. A function of any other
 * type does not compile, nor does a name that no operation has.
 *
 * The matrix' edit menu and table get a text, too: `make(QWidget *parent, const QString &text)`. The graphic
 * frame gets the names of job and step: `make(QWidget *parent, const QString &job, const QString &step)`.
 */
#define PLUGINMANGER_FACTORY(row, make) PLUGINMANGER_ROW_##row(PLUGINMANGER_FACTORY, make)

/**
 * Exports the message entry point of the library that makes the element or frame `row`.
 *
 * `receive` is `void receive(Element *element, PluginMetaData message)` with the type of the element, for
 * example `QMenu`. The element is null when the factory had returned null. A library has one entry point;
 * one that makes several types of elements writes recMsgFromManager() by hand.
 */
#define PLUGINMANGER_ENTRY_POINT(row, receive) PLUGINMANGER_ROW_##row(PLUGINMANGER_ENTRY_POINT, receive)

/**
 * Puts a text into the library that says with what it was built, for tools that read it without loading the
 * library. Written once, in one source. See PluginMangerSdk::abiStamp() for the text.
 */
#define PLUGINMANGER_ABI_STAMP                                                                               \
    extern "C" PLUGINMANGER_PLUGIN_EXPORT const PluginMangerSdk::AbiStamp pluginMangerAbiStamp;              \
    constexpr PluginMangerSdk::AbiStamp pluginMangerAbiStamp = PluginMangerSdk::abiStamp();

// The exported functions, for those who write them by hand. "GetPluginInstance" is not among them: which
// arguments it takes differs from library to library.
extern "C" {
/// The message entry point: receives a message for the element or frame `element`, which its own factory had
/// returned. Called on the user-interface thread.
PLUGINMANGER_PLUGIN_EXPORT void recMsgFromManager(void *element, PluginMetaData message);

/// @{
/// A factory: returns the element or frame as a pointer to exactly the type that its operation returns.
PLUGINMANGER_PLUGIN_EXPORT void *GetEditInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetGraphic_CoordinateInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetGraphic_MiniMapInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetGraphic_TipsInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetMatrixInstance(QWidget *parent, const QString &text);
PLUGINMANGER_PLUGIN_EXPORT void *GetMatrix_ToolBarInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetORVIKGraphicInstance(QWidget *parent, const QString &job,
                                                         const QString &step);
PLUGINMANGER_PLUGIN_EXPORT void *GetORVIKMatrixInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginAnalysisInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginCamGuideInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginDFMInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginDITollInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginGraphicMenuBarActionsInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetPluginROUTInstance(QWidget *parent);
PLUGINMANGER_PLUGIN_EXPORT void *GetViewInstance(QWidget *parent);
/// @}
}

/// What the macros of pluginMangerSdk.h are made of.
namespace PluginMangerSdk {

/// What a plug-in was built with, as a text that ends with a zero.
struct AbiStamp
{
    /// Appends a text.
    constexpr AbiStamp &add(const char *piece)
    {
        while (*piece)
            text[length++] = *piece++;
        return *this;
    }

    /// Appends a number in decimal.
    constexpr AbiStamp &add(std::size_t number)
    {
        if (number >= 10)
            add(number / 10);
        text[length++] = static_cast<char>('0' + number % 10);
        return *this;
    }

    /// The text, filled up with zeros.
    char text[248] = {};

    /// How long the text is.
    std::size_t length = 0;
};

/// Returns the compiler's name and version.
constexpr const char *compiler()
{
#if defined(__clang__)
    return "Clang " __clang_version__;
#elif defined(__GNUC__)
    return "GCC " __VERSION__;
#elif defined(_MSC_VER)
    return "MSVC " QT_STRINGIFY(_MSC_VER);
#else
    return "unknown";
#endif
}

static_assert(std::is_standard_layout_v<PluginMetaData>,
              "the places of the record's fields can be asked for");

/**
 * Returns the stamp of the code that is being compiled, for example
 * `pluginMangerAbi=1;qt=5.15.8;compiler=GCC 12.2.0;pointer=8;record=40:0,8,16,24,32`: the version of this
 * format, of Qt and of the compiler, the size of a pointer, and of PluginMetaData its size and the places of
 * its fields. A tool finds it in the file by its first 16 characters.
 */
constexpr AbiStamp abiStamp()
{
    AbiStamp stamp;
    stamp.add("pluginMangerAbi=1;qt=" QT_VERSION_STR ";compiler=").add(compiler());
    stamp.add(";pointer=").add(sizeof(void *));
    stamp.add(";record=").add(sizeof(PluginMetaData));
    stamp.add(":").add(offsetof(PluginMetaData, src));
    stamp.add(",").add(offsetof(PluginMetaData, dst));
    stamp.add(",").add(offsetof(PluginMetaData, type));
    stamp.add(",").add(offsetof(PluginMetaData, data));
    stamp.add(",").add(offsetof(PluginMetaData, userData));
    return stamp;
}

}

/// @cond
// A row applies a macro to what the manager knows of an element: which arguments its factory takes, the type
// of the element, the factory's name.
#define PLUGINMANGER_ROW_DI_Graphic_JobList(apply, function)                                                 \
    apply##_ELEMENT(QDockWidget, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAMMenuAction(apply, function) apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAMMenuFile(apply, function) apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAMMenuOptions(apply, function) apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAM_Common_MenuBar_Info(apply, function)                                            \
    apply##_ELEMENT(QWidget, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAM_FilterAndInfo_Bar(apply, function)                                              \
    apply##_ELEMENT(QVBoxLayout, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAM_PNDATA_VIEW(apply, function)                                                    \
    apply##_ELEMENT(QScrollArea, GetPluginInstance, function)
#define PLUGINMANGER_ROW_CAM_Progress_Dialog(apply, function)                                                \
    apply##_ELEMENT(QObject, GetPluginInstance, function)
#define PLUGINMANGER_ROW_DFM_Edit_Menu(apply, function) apply##_ELEMENT(QMenu, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_DFM_Operate_Menu(apply, function)                                                   \
    apply##_ELEMENT(QMenu, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_DFM_View_Menu(apply, function) apply##_ELEMENT(QMenu, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_Graphic_Actions_Menu(apply, function)                                               \
    apply##_ELEMENT(QMenu, GetPluginGraphicMenuBarActionsInstance, function)
#define PLUGINMANGER_ROW_Graphic_Analysis_Menu(apply, function)                                              \
    apply##_ELEMENT(QMenu, GetPluginAnalysisInstance, function)
#define PLUGINMANGER_ROW_Graphic_CamDI(apply, function) apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_Coordinate(apply, function)                                                 \
    apply##_ELEMENT(QHBoxLayout, GetGraphic_CoordinateInstance, function)
#define PLUGINMANGER_ROW_Graphic_DI_Tool(apply, function)                                                    \
    apply##_ELEMENT(QToolBar, GetPluginDITollInstance, function)
#define PLUGINMANGER_ROW_Graphic_Edit_Menu(apply, function) apply##_ELEMENT(QMenu, GetEditInstance, function)
#define PLUGINMANGER_ROW_Graphic_JobList2(apply, function)                                                   \
    apply##_ELEMENT(QDockWidget, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_Graphic_JobList(apply, function)                                                    \
    apply##_ELEMENT(QDockWidget, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_MenuBar_DFM(apply, function)                                                \
    apply##_ELEMENT(QMenu, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_Graphic_MenuBar_Other(apply, function)                                              \
    apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_MenuBar_ROUT(apply, function)                                               \
    apply##_ELEMENT(QMenu, GetPluginROUTInstance, function)
#define PLUGINMANGER_ROW_Graphic_MenuBar_Step(apply, function)                                               \
    apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_Menu_File(apply, function)                                                  \
    apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_MiniMap(apply, function)                                                    \
    apply##_ELEMENT(QWidget, GetGraphic_MiniMapInstance, function)
#define PLUGINMANGER_ROW_Graphic_Tips(apply, function)                                                       \
    apply##_ELEMENT(QWidget, GetGraphic_TipsInstance, function)
#define PLUGINMANGER_ROW_Graphic_Tool_Edit(apply, function)                                                  \
    apply##_ELEMENT(QGridLayout, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_Tool_move(apply, function)                                                  \
    apply##_ELEMENT(QGridLayout, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Graphic_View(apply, function) apply##_ELEMENT(QWidget, GetViewInstance, function)
#define PLUGINMANGER_ROW_Matrix_Edit_Menu(apply, function)                                                   \
    apply##_TEXT_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Matrix_File_Menu(apply, function) apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Matrix_Option_Menu(apply, function)                                                 \
    apply##_ELEMENT(QMenu, GetPluginInstance, function)
#define PLUGINMANGER_ROW_Matrix_Table(apply, function)                                                       \
    apply##_TEXT_ELEMENT(QWidget, GetMatrixInstance, function)
#define PLUGINMANGER_ROW_Matrix_ToolBar(apply, function)                                                     \
    apply##_ELEMENT(QWidget, GetMatrix_ToolBarInstance, function)
#define PLUGINMANGER_ROW_Common(apply, function) apply##_ELEMENT(QObject, GetPluginDFMInstance, function)
#define PLUGINMANGER_ROW_GraphicFramework(apply, function)                                                   \
    apply##_STEP_FRAME(QWidget, GetORVIKGraphicInstance, function)
#define PLUGINMANGER_ROW_MatrixFramework(apply, function)                                                    \
    apply##_ELEMENT(QWidget, GetORVIKMatrixInstance, function)
#define PLUGINMANGER_ROW_GuideFramework(apply, function)                                                     \
    apply##_ELEMENT(QWidget, GetPluginCamGuideInstance, function)

// The three kinds of factories. What is given as `make` or `receive` must convert to the pointer to a
// function that stands here, which only a function of that type does.
#define PLUGINMANGER_FACTORY_ELEMENT(Element, symbol, make)                                                  \
    extern "C" PLUGINMANGER_PLUGIN_EXPORT void *symbol(QWidget *parent)                                      \
    {                                                                                                        \
        constexpr Element *(*function)(QWidget *) = make;                                                    \
        return function(parent);                                                                             \
    }
#define PLUGINMANGER_FACTORY_TEXT_ELEMENT(Element, symbol, make)                                             \
    extern "C" PLUGINMANGER_PLUGIN_EXPORT void *symbol(QWidget *parent, const QString &text)                 \
    {                                                                                                        \
        constexpr Element *(*function)(QWidget *, const QString &) = make;                                   \
        return function(parent, text);                                                                       \
    }
#define PLUGINMANGER_FACTORY_STEP_FRAME(Element, symbol, make)                                               \
    extern "C" PLUGINMANGER_PLUGIN_EXPORT void *symbol(QWidget *parent, const QString &job,                  \
                                                       const QString &step)                                  \
    {                                                                                                        \
        constexpr Element *(*function)(QWidget *, const QString &, const QString &) = make;                  \
        return function(parent, job, step);                                                                  \
    }

#define PLUGINMANGER_ENTRY_POINT_ELEMENT(Element, symbol, receive)                                           \
    extern "C" PLUGINMANGER_PLUGIN_EXPORT void recMsgFromManager(void *element, PluginMetaData message)      \
    {                                                                                                        \
        constexpr void (*function)(Element *, PluginMetaData) = receive;                                     \
        function(static_cast<Element *>(element), message);                                                  \
    }
#define PLUGINMANGER_ENTRY_POINT_TEXT_ELEMENT PLUGINMANGER_ENTRY_POINT_ELEMENT
#define PLUGINMANGER_ENTRY_POINT_STEP_FRAME PLUGINMANGER_ENTRY_POINT_ELEMENT
/// @endcond
