#pragma once

#include "sampleJob.h"

class QPainter;

/// Draws the job in its own coordinates, in millimetres. With a layer's name, that layer stands out.
void paintJob(QPainter &painter, const Job &job, const QString &highlightedLayer = {});
