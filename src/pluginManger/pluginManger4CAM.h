#pragma once

#include "PluginMetaData.h"
#include "pluginMangerBase.h"
#include "registerRecord.h"

#include <functional>
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

namespace PluginMangerInternal {
class Registry;
template <typename Element>
struct ElementFactory;
template <typename Element>
struct TextElementFactory;
struct FrameFactory;
}

/**
 * The manager of the CAM and DFM workspaces' plug-ins, which are plain libraries.
 *
 * A host calls, in this order: instance(); loadAllPlugins() and/or loadAllDFMPlugins(); insertRoot() with
 * its engineering root; the registration operations while it builds its windows; then the routing, text,
 * job and update operations for as long as it runs.
 *
 * Everything belongs to the user-interface thread, and plug-ins are called synchronously on it. They may call
 * back into the manager: each operation goes by the records that it found when it collected its receivers, so
 * an element or frame that is unregistered meanwhile may still get that one message. Delete widgets with
 * QObject::deleteLater(), not from within an entry point.
 *
 * The library itself throws nothing; what a plug-in throws passes through to the caller unless an operation
 * says otherwise. Operations that are made of others pass on what those do not show.
 *
 * The registry owns no element: widgets belong to the host's widget tree. It knows parents and elements by
 * their addresses and does not notice when one is deleted. So keep the parents of elements for the rest of
 * the run, or, for frames, unregister or delete them here before their widgets go: a new widget at an old
 * one's address would be given the old one's elements.
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
     * checks of this load and all later ones.
     *
     * A second call unloads each library and loads it again. Do so only when no element of theirs is left:
     * the registry goes on returning the elements that it knows, and their code may have gone. For the same
     * reason what a plug-in hands out must not refer to its own read-only data, as QStringLiteral() does.
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
    /// ownership, and deletes it when that library is loaded again.
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

    /// The element of the library that the operation is made for.
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

    /**
     * @name Frames
     *
     * A frame is the main window of one job, or of one step of it, in one of the editors. Registering one
     * makes it, records it and tells it by a message which job it shows; a frame that is already registered
     * is returned without either. `parent` is borrowed, may be null, and is handed to the factory.
     *
     * The result is null, and nothing is recorded, when the editor's library is not loaded or does not export
     * its factory. A library without the message entry point gives a frame that is not told anything.
     * A factory's null is recorded, told and returned like a frame.
     */
    /// @{

    /**
     * The graphic frame called `name`: the job's name, " | " and the step's name. Its message, of type
     * 20001638, carries "JobName", "Step" and "IsCamAssistant" ("true" or "false"). The result is null when
     * `name` does not have exactly two parts.
     */
    QWidget *Ov_RegisterGraphicFramework(QWidget *parent, const std::string &name, bool isCamAssistant);

    /// The same for DFM: its message, of type 20004616, carries nothing, and once it is sent, "ok" is logged.
    /// The last argument is not used.
    QWidget *Ov_RegisterDFMGraphicFramework(QWidget *parent, const std::string &name, bool isCamAssistant);

    /// The graphic frame of a job's step, for hosts whose frames do not belong to the engineering root. Its
    /// message, of type 20001638, carries "JobName" and "Step".
    QWidget *Ov_RegisterGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                const std::string &step);

    /// The same for DFM. The frame has the wildcard name, which texts and updates for every job reach, and is
    /// told apart from others by job and step. Its message, of type 20004616, carries nothing.
    QWidget *Ov_RegisterDFMGraphicFramework4Quorel(QWidget *parent, const std::string &job,
                                                   const std::string &step);

    /// The matrix frame of a job. Its message, of type 20001638, carries "JobName".
    QWidget *Ov_RegisterMatrixFramework(QWidget *parent, const std::string &job);

    /// The guide frame of a job. Its message, of type 20003913, carries "JobName". Routing, renaming and
    /// updates find it only when `job` is the job's name followed by "|Guide".
    QWidget *Ov_RegisterGuideFramework(QWidget *parent, const std::string &job);

    /// A guide as an element, recorded under `name` and `parent` like the elements above; it always comes
    /// from the guide's library. Its message, of type 20003913, carries "JobName".
    QWidget *Ov_Register_CamGuide(std::string name, QWidget *parent, const std::string &job);

    /**
     * Forgets the graphic frame of a job's step, and the elements in it, then tells the frame by a message of
     * type 20002402. The frame decides itself how to close; it is not deleted here. Does nothing when there
     * is no such frame.
     */
    void Ov_UnRegisterGraphicFramework4Quorel(const std::string &job, const std::string &step);

    /// The same for a DFM frame.
    void Ov_UnRegisterDFMGraphicFramework4Quorel(const std::string &job, const std::string &step);
    /// @}

    /**
     * @name Routing
     *
     * Each operation chooses who is to receive a message, and hands each receiver's library a copy of it
     * together with a pointer to the receiver. A receiver that cannot be found, a library that is not loaded
     * and one without the entry point are passed over in silence.
     *
     * The operations that read "DstType", "JobName" or "Step" from the message add what is missing as an
     * invalid value to the copy that they deliver; the caller's record stays as it is.
     *
     * Where it is said that an operation shows failures, an exception thrown as a pointer to QException ends
     * it, is shown in a modal message box and logged, and does not reach the caller. It is not deleted: who
     * threw it owns it. Every other exception reaches the caller.
     */
    /// @{

    /**
     * Delivers a message that was sent from inside `frame` to the element named `meta.dst` in that frame, and
     * logs who sent what to whom, unless the type is 10000000. A type of -1 and a frame that is not
     * registered are logged as errors, and nothing is delivered.
     */
    void recMegToPlugin(void *frame, PluginMetaData meta);

    /**
     * Delivers a message by the kind of frame in "DstType": to the elements named `meta.dst` in the frame
     * "Graphic" of "JobName" and "Step", in the frame "Matrix" of "JobName", or under the "EngineerRoot"; or
     * to the frame "Guide" of "JobName" itself. Shows failures.
     */
    void pluginTransmitData(PluginMetaData meta);

    /// Delivers a message to `frame` when `meta.dst` is one of the three editors' libraries. The registry is
    /// not asked. Shows failures.
    void transmitDataToFramework(void *frame, const PluginMetaData &meta);

    /// Delivers a message to the registered frame `frame` of the graphic editor, whatever `meta.dst` says.
    void sendKeyBoardStatusToGraphic(void *frame, const PluginMetaData &meta);

    /// Calls Eda_setTransmitData() with the message's "DstType".
    void Eda_CAM_TransmitData(const QString &jobName, PluginMetaData meta);

    /**
     * Delivers a message to all graphic frames whose name up to the first " | " is `jobName` when `dstType`
     * is "Graphic". For any other kind, and when there is no graphic frame at all, to the elements named
     * `meta.dst` under the engineering root. Shows failures.
     */
    void Eda_setTransmitData(const QString &dstType, const QString &jobName, PluginMetaData meta);
    /// @}

    /**
     * @name Interface texts
     *
     * Deliver as routing does.
     */
    /// @{

    /// Calls setInterfaceTexts() with the message's "DstType".
    void Ov_SetCurrentText(const QString &text, PluginMetaData meta);

    /**
     * Delivers a message to the frames of the kind `dstType` ("Graphic", "Matrix" or "Guide") whose name, up
     * to its first " | " if it has one, is `text`, and to those of the wildcard name. For any other kind, and
     * when there is no frame of the kind at all, to the elements named `meta.dst` under the engineering root.
     * Shows failures.
     */
    void setInterfaceTexts(const QString &dstType, const QString &text, PluginMetaData meta);

    /// Does nothing. Kept for hosts that call it.
    void setEngineerText(const QString &text, PluginMetaData meta);
    /// Does nothing. Kept for hosts that call it.
    void setGraphicText(const QString &text, PluginMetaData meta);
    /// Does nothing. Kept for hosts that call it.
    void setMatrixText(const QString &text, PluginMetaData meta);
    /// @}

    /**
     * @name Jobs and steps
     *
     * Keep the registry in step with the host's job tree and tell the plug-ins concerned, as routing does.
     */
    /// @{

    /// Delivers a message to the elements in all graphic frames whose name contains `meta.dst`. Shows
    /// failures.
    void ChangeCompareJobInfo(PluginMetaData meta);

    /**
     * Gives the matrix, graphic and guide frames of a job its new name, then tells: the matrix frame and the
     * matrix tables in it by a message of type 20002401 with "NewJobName"; the job lists in the job's graphic
     * frames and its guide frames by one of type 20002400 with "OldJobName" and "NewJobName".
     *
     * Whatever graphic frame has the old name and " | " anywhere in its name has its start replaced. Guide
     * frames are found by the job's name and "|Guide". Frames of the wildcard name keep name and key.
     *
     * The last three messages are sent as by the update operations, which show failures; what is thrown at
     * the first one reaches the caller, and the others are then not sent.
     */
    void OV_ChangeJobNameAndUpdateJob(const QString &oldJobName, const QString &newJobName);

    /// Gives the graphic frame of a step its new name. Nobody is told.
    void Ov_ChangeStepName(const QString &jobName, const QString &oldStepName, const QString &newStepName);

    /**
     * Forgets the frames of a job (`nodeType` "Matrix", `name` the job) or of a step ("Graphic", the job's
     * name, " | " and the step's name) and the elements in them, and tells each frame by a message of type
     * 20002402 once it is forgotten. Other kinds of node have no frames. Frames of the wildcard name stay.
     *
     * The messages are sent as by transmitDataToFramework(), which shows failures, so that the other frames
     * are told all the same. A frame that deletes its own job once more when it is told has the frames that
     * are still to come told twice.
     */
    void Ov_DeleteTreeNode(const QString &nodeType, const QString &name);

    /// Calls the update operation for the message's "DstType": "Graphic", "EngineerRoot" or "Matrix". They
    /// show failures.
    void Ov_UpdateJob(const QString &name, PluginMetaData meta);
    /// @}

    /**
     * @name Frame updates
     *
     * Deliver a message to elements inside the frames of one kind, as routing does. All four show failures.
     */
    /// @{

    /// To the elements named `meta.dst` under the engineering root. `name` is not used.
    void updateEngieer(const QString &name, PluginMetaData meta);

    /**
     * To the elements whose name contains `meta.dst` in graphic frames whose name contains `name` and " | ",
     * or only in the one of the step "ChangeStepName", and in every frame of the wildcard name. With
     * "OldJobName" and "NewJobName" a step without a name is left out. These three keys are added as routing
     * adds its own.
     */
    void updateGraphic(const QString &name, PluginMetaData meta);

    /// To the guide frames of the job `name` themselves.
    void updateGuide(const QString &name, PluginMetaData meta);

    /// To the elements whose name contains `meta.dst` in the matrix frames of the job `name`.
    void updateMatrix(const QString &name, PluginMetaData meta);
    /// @}

private:
    QTpluginsManger4CAM();
    ~QTpluginsManger4CAM() override;

    void loadListedLibraries(const QTPluginsMangerPrivate &description);

    PluginMangerInternal::Registry registry();

    template <typename Element>
    Element *registerElement(const PluginMangerInternal::ElementFactory<Element> &factory, QWidget *parent);
    template <typename Element>
    Element *registerElement(const PluginMangerInternal::TextElementFactory<Element> &factory,
                             QWidget *parent, const std::string &text);
    void *registerElement(const std::string &library, const char *symbol, QWidget *parent,
                          const QString *text);

    using FindFrame = std::function<RegisterRecord()>;
    using MakeFrame = std::function<void *(QFunctionPointer factory)>;
    using TellStep = std::function<void(void *frame, const QString &job, const QString &step)>;
    using Belongs = std::function<bool(const RegisterRecord &frame)>;
    QWidget *registerFrame(const PluginMangerInternal::FrameFactory &factory, const FindFrame &find,
                           const MakeFrame &make);
    QWidget *registerGraphicFrame(QWidget *parent, std::string name, const TellStep &tell);
    QWidget *registerStepFrame(QWidget *parent, const QString &job, const QString &step,
                               RegisterRecord record, const FindFrame &find, const PluginMetaData &message);
    QWidget *registerRootFrame(const PluginMangerInternal::FrameFactory &factory, const std::string &kind,
                               QWidget *parent, std::string job, qint32 messageType);
    void closeUnregisteredFrame(void *frame);
    void deleteFrames(const std::vector<RegisterRecord> &frames, const Belongs &belongs,
                      const PluginMangerInternal::FrameFactory &editor);

    bool deliverTo(const QString &library, void *target, const PluginMetaData &message) const;
    void deliverToFrames(const std::vector<RegisterRecord> &frames, const Belongs &belongs,
                         const PluginMetaData &message);
    void deliverIntoFrame(const RegisterRecord &frame, const PluginMetaData &message);
    void deliverToElementsNamed(void *parent, const PluginMetaData &message);
    void deliverToElementsContaining(void *parent, const PluginMetaData &message);

    QTPluginsMangerPrivate m_private;
    std::vector<RegisterRecord> m_registerList;
    bool m_bCAMLoaded = false;
    bool m_bDFMLoaded = false;

    static QTpluginsManger4CAM *m_instance4CAM;
};
