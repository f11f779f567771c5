// The registry is a state machine that does what the model says. Each operation of the input takes four bytes
// and then the texts that it needs; objects are few, so that they meet.

#include "choices.h"
#include "registry_p.h"
#include "registrymodel.h"
#include "target.h"

#include <algorithm>

using PluginMangerInternal::NameText;
using PluginMangerInternal::Registry;

namespace {

int things[6];
const std::string kinds[] = {"Plugin", "Graphic", "Matrix", "Guide", "EngineerRoot", "", "Other"};
const std::string pieces[] = {
    "A", "B",    " | ", "|Guide",           "|",           "\xff", "\xef\xbf\xbd", "\xef\xbb\xbf",
    "Ä", ".dll", "?",   "\xf0\x9f\x98\x80", "\xed\xa0\xbd"};
// Half of a surrogate pair, which no bytes convert to, and which converts to a question mark.
const QString half = QChar(0xd83d);

void *object(Choices &choices)
{
    const int index = choices.below(7);
    return index == 6 ? nullptr : &things[index];
}

/// A text of pieces that mean something to the registry, or of any bytes.
std::string name(Choices &choices)
{
    const int length = choices.below(6);
    if (length == 5)
        return choices.take(choices.below(12)).toStdString();
    std::string text;
    for (int count = 0; count < length; ++count)
        text += choices.of(pieces);
    return text;
}

/// The text of a name, or one that is much like it to a careless reader.
QString textOf(const std::string &name, Choices &choices)
{
    QString text = QString::fromStdString(name);
    switch (choices.below(8)) {
    case 4:
        return text.replace('?', half);
    case 5:
        return text + half;
    case 6:
        return QChar(QChar::ByteOrderMark) + text;
    case 7:
        return text.replace(half, QString());
    default:
        return text;
    }
}

bool same(const RegisterRecord &left, const RegisterRecord &right)
{
    return left.type == right.type && left.name == right.name && left.key == right.key
           && left.object == right.object && left.parent == right.parent;
}

bool same(const std::vector<RegisterRecord> &left, const std::vector<RegisterRecord> &right)
{
    return std::equal(
        left.begin(), left.end(), right.begin(), right.end(),
        [](const RegisterRecord &one, const RegisterRecord &other) { return same(one, other); });
}

bool same(const Registry::Objects &objects, const std::vector<RegisterRecord> &children,
          const std::function<bool(const QString &)> &matches)
{
    Registry::Objects expected;
    for (const RegisterRecord &child : children) {
        if (child.type == "Plugin" && matches(QString::fromStdString(child.name)))
            expected.append(child.object);
    }
    return objects == expected;
}

void append(Registry &registry, RegistryModel &model, Choices &choices)
{
    RegisterRecord record(choices.of(kinds), name(choices), object(choices), object(choices));
    if (choices.oneIn(3))
        record.key = name(choices);
    registry.appendRecord(record);
    model.append(record);
}

void lookUp(const Registry &registry, const RegistryModel &model, Choices &choices)
{
    const std::string kind = choices.of(kinds);
    const std::string text = name(choices);
    void *const pointer = object(choices);
    FuzzTarget::require(same(registry.findRecord(text, pointer), model.find(text, pointer)), "findRecord");
    FuzzTarget::require(same(registry.findRecordByObject(pointer), model.findByObject(pointer)),
                        "findRecordByObject");
    FuzzTarget::require(same(registry.findRootRecord(), model.findRoot()), "findRootRecord");
    FuzzTarget::require(same(registry.findFrame(kind, text), model.findFrame(kind, text)), "findFrame");
    FuzzTarget::require(same(registry.findGraphicFrameByKey(text), model.findGraphicByKey(text)),
                        "findGraphicFrameByKey");
    FuzzTarget::require(same(registry.collectFrames(kind), model.frames(kind)), "collectFrames");

    const std::vector<RegisterRecord> children = model.childrenOf(pointer);
    FuzzTarget::require(same(registry.collectChildren(pointer), children), "collectChildren");
    const QString dst = textOf(text, choices);
    FuzzTarget::require(same(registry.collectElementsNamed(pointer, NameText(dst)), children,
                             [&](const QString &child) { return child == dst; }),
                        "collectElementsNamed");
    FuzzTarget::require(same(registry.collectElementsContaining(pointer, NameText(dst)), children,
                             [&](const QString &child) { return child.contains(dst); }),
                        "collectElementsContaining");
    for (const RegisterRecord &record : model.records) {
        const QString whole = QString::fromStdString(record.name);
        FuzzTarget::require(NameText(dst).equals(record.name) == (whole == dst), "equals");
        FuzzTarget::require(NameText(dst).isIn(record.name) == whole.contains(dst), "isIn");
        for (const char *const mark : {" | ", "|"})
            FuzzTarget::require(NameText(dst).isStartOf(record.name, mark)
                                    == (whole.split(mark).first() == dst),
                                "isStartOf");
    }
}

void change(Registry &registry, RegistryModel &model, Choices &choices)
{
    const int operation = choices.below(5);
    const std::string kind = choices.of(kinds);
    const std::string text = name(choices);
    void *const pointer = object(choices);
    if (operation == 0) {
        registry.eraseGraphicFramesByName(text);
        model.eraseGraphicByName(text);
    } else if (operation == 1) {
        registry.eraseGraphicFramesByKey(text);
        model.eraseGraphicByKey(text);
    } else if (operation == 2) {
        registry.eraseRecord(text, pointer);
        model.eraseFirst(text, pointer);
    } else if (operation == 3) {
        registry.removeRecordsOf(pointer);
        model.removeRecordsOf(pointer);
    } else {
        const std::string newName = name(choices);
        registry.renameFrames(kind, text, newName);
        model.rename(kind, text, newName);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzTarget::prepare();
    Choices choices(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    std::vector<RegisterRecord> records;
    Registry registry(records);
    RegistryModel model;
    while (!choices.atEnd()) {
        switch (choices.below(4)) {
        case 0:
        case 1:
            append(registry, model, choices);
            break;
        case 2:
            lookUp(registry, model, choices);
            break;
        case 3:
            change(registry, model, choices);
            break;
        }
        FuzzTarget::require(same(records, model.records), "records");
    }
    return 0;
}
