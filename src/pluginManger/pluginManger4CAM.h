#pragma once

#include "pluginMangerBase.h"
#include "registerRecord.h"

#include <string>
#include <vector>

class QDockWidget;
class QGridLayout;
class QHBoxLayout;
class QMenu;
class QScrollArea;
class QToolBar;
class QVBoxLayout;
class QWidget;

class Registry;
template <typename Element>
struct ElementFactory;
template <typename Element>
struct TextElementFactory;

/**
 * The manager of the CAM and DFM workspaces' plug-ins, which are plain libraries.
 *
 * A host calls, in this order: instance(); loadAllPlugins() and/or loadAllDFMPlugins(); insertRoot() with
 * its engineering root; then the registration operations while it builds its windows.
 *
 * Everything belongs to the user-interface thread, and plug-ins are called synchronously on it. The
 * library itself throws nothing; what a plug-in throws passes through to the caller unless an operation
 * says otherwise. The registry owns no element: widgets belong to the host's widget tree, and a host that
 * deletes one must not use it here again.
 */
class PLUGINMANGER_EXPORT QTpluginsManger4CAM : public QTpluginsMangerBase
{
    Q_OBJECT

public:
    /// Returns the one manager of this process, made by the first call and never deleted.
    static QTpluginsManger4CAM *instance();

    /**
     * Loads the libraries listed in "pluginconfig4CAM.json". Always returns true: a library that does not
     * load is logged, shown in a message box, and does not keep the others from loading.
     *
     * The file lies in `Common::getPath()` + "/" + `Common::getPath_pluginconfig()`, with the current
     * directory in place of an empty `Common::getPath()`. Its description is kept, for the dependency
     * checks of this load and all later ones. A second call loads all libraries anew.
     */
    bool loadAllPlugins();

    /**
     * Loads the libraries listed in "pluginconfig4DFM.json", as loadAllPlugins() does, beside those of the
     * CAM set. The file's description is not kept: dependencies that it states are never checked.
     */
    bool loadAllDFMPlugins();

    /// True once loadAllPlugins() has run, whatever it could load.
    bool isCAMLoaded() const;

    /// True once loadAllDFMPlugins() has run, whatever it could load.
    bool isDFMLoaded() const;

    /// Returns the loaded library of exactly this file name, ".dll" included, or null. The manager keeps
    /// ownership.
    QLibrary *plugin(const QString &name) const;

    /**
     * Records the host's engineering root, under which elements and frames are found. `root` is borrowed
     * and may be null. A second root is recorded too, but the first stays the one in use. Should memory
     * run out, the registry stays as it was and an error is logged.
     */
    void insertRoot(const std::string &name, void *root);

    /// Returns the first root that was inserted, or null.
    void *getRoot();

    /// Returns true for every frame, registered or not: hosts treat every frame as registered.
    bool Ov_isRegisterFrame(void *frame);

    /// Does nothing: the registry keeps its records. Kept for hosts that call it.
    void Ov_RegisterClear();

    /**
     * @name User-interface elements
     *
     * Each operation knows one library and one factory function in it. The first call for a parent makes
     * the element and records it; every later call for that parent returns the same one without calling
     * the factory, also when the factory had returned null. `parent` is borrowed, may be null, and is
     * handed to the factory; who owns the element is between the factory and that parent.
     *
     * The result is null, and nothing is recorded, when the library is not loaded or does not export the
     * function, even if the element had been made before.
     *
     * The two operations with a text hand it to the factory when they make the element. It does not tell
     * elements apart: the same parent with another text gets the element of the first text.
     */
    /// @{
    QDockWidget *OvDI_RegisterGraphic_JobList(QWidget *parent);
    QMenu *Ov_RegisterCAMMenuAction(QWidget *parent);
    QMenu *Ov_RegisterCAMMenuFile(QWidget *parent);
    QMenu *Ov_RegisterCAMMenuOptions(QWidget *parent);
    QWidget *Ov_RegisterCAM_Common_MenuBar_Info(QWidget *parent);
    QVBoxLayout *Ov_RegisterCAM_FilterAndInfo_Bar(QWidget *parent);
    QScrollArea *Ov_RegisterCAM_PNDATA_VIEW(QWidget *parent);
    QObject *Ov_RegisterCAM_Progress_Dialog(QWidget *parent);
    QMenu *Ov_RegisterDFM_Edit_Menu(QWidget *parent);
    QMenu *Ov_RegisterDFM_Operate_Menu(QWidget *parent);
    QMenu *Ov_RegisterDFM_View_Menu(QWidget *parent);
    QMenu *Ov_RegisterGraphic_Actions_Menu(QWidget *parent);
    QMenu *Ov_RegisterGraphic_Analysis_Menu(QWidget *parent);
    QMenu *Ov_RegisterGraphic_CamDI(QWidget *parent);
    QHBoxLayout *Ov_RegisterGraphic_Coordinate(QWidget *parent);
    QToolBar *Ov_RegisterGraphic_DI_Tool(QWidget *parent);
    QMenu *Ov_RegisterGraphic_Edit_Menu(QWidget *parent);
    QDockWidget *Ov_RegisterGraphic_JobList2(QWidget *parent);
    QDockWidget *Ov_RegisterGraphic_JobList(QWidget *parent);
    QMenu *Ov_RegisterGraphic_MenuBar_DFM(QWidget *parent);
    QMenu *Ov_RegisterGraphic_MenuBar_Other(QWidget *parent);
    QMenu *Ov_RegisterGraphic_MenuBar_ROUT(QWidget *parent);
    QMenu *Ov_RegisterGraphic_MenuBar_Step(QWidget *parent);
    QMenu *Ov_RegisterGraphic_Menu_File(QWidget *parent);
    QWidget *Ov_RegisterGraphic_MiniMap(QWidget *parent);
    QWidget *Ov_RegisterGraphic_Tips(QWidget *parent);
    QGridLayout *Ov_RegisterGraphic_Tool_Edit(QWidget *parent);
    QGridLayout *Ov_RegisterGraphic_Tool_move(QWidget *parent);
    QWidget *Ov_RegisterGraphic_View(QWidget *parent);
    QMenu *Ov_RegisterMatrix_Edit_Menu(QWidget *parent, const std::string &text);
    QMenu *Ov_RegisterMatrix_File_Menu(QWidget *parent);
    QMenu *Ov_RegisterMatrix_Option_Menu(QWidget *parent);
    QWidget *Ov_RegisterMatrix_Table(QWidget *parent, const std::string &text);
    QWidget *Ov_RegisterMatrix_ToolBar(QWidget *parent);

    /// The element of the library named by its file name, ".dll" included.
    QObject *Ov_Register_Common(std::string library, QWidget *parent);
    /// @}

private:
    QTpluginsManger4CAM();
    ~QTpluginsManger4CAM() override;

    void loadListedLibraries(const QTPluginsMangerPrivate &description);

    Registry registry();

    template <typename Element>
    Element *registerElement(const ElementFactory<Element> &factory, QWidget *parent);
    template <typename Element>
    Element *registerElement(const TextElementFactory<Element> &factory, QWidget *parent,
                             const std::string &text);
    void *registerElement(const QString &library, const char *symbol, QWidget *parent, const QString *text);

    QTPluginsMangerPrivate m_private;
    std::vector<RegisterRecord> m_registerList;
    bool m_bCAMLoaded = false;
    bool m_bDFMLoaded = false;

    static QTpluginsManger4CAM *m_instance4CAM;
};
