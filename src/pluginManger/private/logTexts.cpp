#include "logTexts_p.h"

#include <QtCore/QTextCodec>

std::string PluginMangerInternal::LogTexts::toGbk(const QString &text)
{
    // A Qt built without the large codecs knows no GBK: a line in UTF-8 still beats none.
    const QTextCodec *const gbk = QTextCodec::codecForName("GBK");
    return (gbk ? gbk->fromUnicode(text) : text.toUtf8()).toStdString();
}
