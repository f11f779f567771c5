#pragma once

#include "Frame.h"
#include "Places.h"

/// Gives a frame the empty places that its kind of elements goes to.
Places makeFramePlaces(FrameKind kind, QMainWindow *frame);

/// Brings the docks of a frame to the sizes that they start with, once all of them are there.
void arrangeFrameDocks(QMainWindow *frame);
