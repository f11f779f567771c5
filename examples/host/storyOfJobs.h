#pragma once

struct Stage;

/// The host tells plug-ins about its jobs: texts, keys and comparisons, new names, and what is deleted.
void playStoryOfJobs(const Stage &stage);
