#pragma once

class Account;
class Post;
class ProcessBar_Process;
class QTpluginsManger;

/// Tells which of the ten desktop tools are there and have built what they are for, and whether the plug-in
/// that is none of them answers.
void tellDesktopTools(QTpluginsManger *manager, Post &post, Account &account);

/// The display for progress, or null when there is none. The manager has it only if it met the progress bar's
/// plug-in after the menu bar's.
ProcessBar_Process *progressDisplay(const QTpluginsManger &manager);
