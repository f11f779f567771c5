#pragma once

#include "Frame.h"
#include "Places.h"

/// Gives a frame the empty places that its kind of elements goes to.
Places makeFramePlaces(FrameKind kind, QMainWindow *frame);

/// Makes the docks at the frame's left as narrow as they can be, once they are there.
void arrangeFrameDocks(QMainWindow *frame);
