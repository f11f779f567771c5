// What a plug-in exports with pluginMangerSdk.h, right as it stands. Each definition from the command line
// makes one thing wrong, and then it must not compile.

#include <pluginMangerSdk.h>

#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

#if defined(FACTORY_RETURNS_A_DERIVED_TYPE)
static QLabel *makeView(QWidget *parent)
{
    return new QLabel(parent);
}
#elif defined(FACTORY_RETURNS_AN_UNTYPED_POINTER)
static void *makeView(QWidget *parent)
{
    return new QLabel(parent);
}
#elif defined(FACTORY_WITHOUT_PARENT)
static QWidget *makeView()
{
    return new QLabel;
}
#elif defined(FACTORY_WITH_ANOTHER_PARENT)
static QWidget *makeView(QMenu *parent)
{
    return new QLabel(parent);
}
#elif defined(FACTORY_WITH_A_TEXT_TOO_MANY)
static QWidget *makeView(QWidget *parent, const QString &text)
{
    return new QLabel(text, parent);
}
#else
static QWidget *makeView(QWidget *parent)
{
    return new QLabel(parent);
}
#endif

#if defined(TEXT_FACTORY_WITHOUT_TEXT)
static QWidget *makeTable(QWidget *parent)
{
    return new QLabel(parent);
}
#elif defined(TEXT_FACTORY_WITH_A_TEXT_BY_VALUE)
static QWidget *makeTable(QWidget *parent, QString text)
{
    return new QLabel(text, parent);
}
#else
static QWidget *makeTable(QWidget *parent, const QString &text)
{
    return new QLabel(text, parent);
}
#endif

#if defined(FRAME_FACTORY_WITHOUT_STEP)
static QWidget *makeFrame(QWidget *parent, const QString &job)
{
    return new QLabel(job, parent);
}
#else
static QWidget *makeFrame(QWidget *parent, const QString &job, const QString & /*step*/)
{
    return new QLabel(job, parent);
}
#endif

#if defined(RECEIVER_OF_ANOTHER_TYPE)
static void receive(QLabel *view, PluginMetaData message)
#elif defined(RECEIVER_BY_REFERENCE)
static void receive(QWidget *view, const PluginMetaData &message)
#else
static void receive(QWidget *view, PluginMetaData message)
#endif
{
    view->setObjectName(message.src);
}

#if defined(UNKNOWN_ELEMENT)
PLUGINMANGER_FACTORY(Graphic_Vieww, makeView)
#elif defined(FACTORY_OF_ANOTHER_ELEMENT)
PLUGINMANGER_FACTORY(CAMMenuFile, makeView)
#else
PLUGINMANGER_FACTORY(Graphic_View, makeView)
#endif
PLUGINMANGER_FACTORY(Matrix_Table, makeTable)
PLUGINMANGER_FACTORY(GraphicFramework, makeFrame)

#if defined(ENTRY_POINT_BY_HAND)
void recMsgFromManager(void *element, PluginMetaData message)
{
    receive(static_cast<QWidget *>(element), message);
}
#elif defined(ENTRY_POINT_BY_HAND_WITH_A_REFERENCE)
extern "C" void recMsgFromManager(void *element, const PluginMetaData &message)
{
    receive(static_cast<QWidget *>(element), message);
}
#elif defined(ENTRY_POINT_BY_HAND_WITH_A_TYPED_ELEMENT)
extern "C" void recMsgFromManager(QWidget *element, PluginMetaData message)
{
    receive(element, message);
}
#elif defined(ENTRY_POINT_BY_HAND_WITH_A_RESULT)
extern "C" int recMsgFromManager(void *, PluginMetaData)
{
    return 0;
}
#else
PLUGINMANGER_ENTRY_POINT(Graphic_View, receive)
#endif

#if defined(FACTORY_BY_HAND_WITHOUT_PARENT)
extern "C" void *GetEditInstance()
{
    return nullptr;
}
#elif defined(FACTORY_BY_HAND_WITH_A_TYPED_RESULT)
extern "C" QMenu *GetEditInstance(QWidget *parent)
{
    return new QMenu(parent);
}
#else
void *GetEditInstance(QWidget *parent)
{
    return new QMenu(parent);
}
#endif

PLUGINMANGER_ABI_STAMP
