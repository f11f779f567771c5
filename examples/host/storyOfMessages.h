#pragma once

struct Stage;

/// Plug-ins send each other messages: somebody uses one element, and others show it.
void playStoryOfMessages(const Stage &stage);
