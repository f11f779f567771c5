#pragma once

#include "sampleJob.h"

class QPainter;

/// Draws the step in its own coordinates, in millimetres. With a layer's name, that layer stands out.
void paintStep(QPainter &painter, const Step &step, const QString &highlightedLayer = {});
