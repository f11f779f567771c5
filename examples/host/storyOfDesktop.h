#pragma once

class Account;
class DesktopWindow;
class QTpluginsManger;

/// Desktop tools send each other messages: somebody uses one, and others show it.
void playStoryOfDesktop(QTpluginsManger &manager, const DesktopWindow &window, Account &account);
