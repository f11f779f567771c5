#pragma once

#include <QtCore/QtGlobal>

namespace PluginMangerInternal {

/// Gives a function that was resolved by name the type that plug-ins export it with.
template <typename Function>
Function *functionAs(QFunctionPointer resolved)
{
    return reinterpret_cast<Function *>(resolved);
}

}
