#pragma once

#include <QtCore/QString>

#include <string>

/**
 * The Chinese texts of log lines and message boxes.
 *
 * A message box shows them as they are. In the log they are GBK bytes, which is what the log viewers of
 * the people who read these lines expect; paths and loader reasons beside them stay UTF-8.
 */
namespace PluginMangerInternal::LogTexts {

inline QString configMissing()
{
    return QStringLiteral("插件json文件不存在！路径：");
}
// Ends its sentence with an ASCII "!", unlike all others: people search their logs for it as it stands.
inline QString configNotOpened()
{
    return QStringLiteral("插件json文件打开失败!路径：");
}
inline QString configNotParsed()
{
    return QStringLiteral("解析config json文件错误！路径：");
}
inline QString notALibrary()
{
    return QStringLiteral("目标路径内没有库文件！路径：");
}
inline QString dependenciesFailed()
{
    return QStringLiteral("目标路径内库文件插件依赖项检测失败！路径：");
}
inline QString loadFailed()
{
    return QStringLiteral("加载插件失败！失败路径：");
}
inline QString loadFailedReason()
{
    return QStringLiteral("，失败原因：");
}
inline QString allLoaded()
{
    return QStringLiteral("加载所有插件成功");
}
inline QString allUnloaded()
{
    return QStringLiteral("所有插件已卸载！");
}

/// Returns `text` as bytes of the GBK code page.
std::string toGbk(const QString &text);

}
