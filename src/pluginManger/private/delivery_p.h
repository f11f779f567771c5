#pragma once

class QLibrary;
struct PluginMetaData;

namespace PluginMangerInternal {

/**
 * Hands a copy of `message`, with `target`, to the entry point "recMsgFromManager" of `library`.
 *
 * The entry point is resolved at every call: between two messages a library can be unloaded and another
 * loaded in its place. Returns false, having called nothing, when `library` is null or exports no entry
 * point. What the plug-in throws passes through.
 */
bool deliver(QLibrary *library, void *target, const PluginMetaData &message);

}
