#pragma once

namespace PluginMangerInternal {

/**
 * The factories of frames, and the names by which frames are told apart. The managers and the tools that
 * check plug-in sets read them here.
 */

/// A function that takes the parent widget and returns a frame as an untyped pointer. The graphic editor's
/// takes the job's and the step's name, const QString references, after it.
struct FrameFactory
{
    const char *library;
    const char *symbol;
};

namespace FrameFactories {
inline constexpr FrameFactory graphicEditor{"ORVIK-GraphicEditor.dll", "GetORVIKGraphicInstance"};
inline constexpr FrameFactory matrix{"ORVIK-Matrix.dll", "GetORVIKMatrixInstance"};
inline constexpr FrameFactory camGuide{"Graphic_CamGuide.dll", "GetPluginCamGuideInstance"};
}

namespace FrameNames {
/// Stands between job and step in the name of a graphic frame.
inline constexpr char separator[] = " | ";
/// Follows the job in the name by which guide frames are looked up.
inline constexpr char guideSuffix[] = "|Guide";
/// The name of graphic frames that belong to no job; no job can be called this.
inline constexpr char wildcard[] = "!$*!OV?*? | !*$!DFM?*?";
}

}
