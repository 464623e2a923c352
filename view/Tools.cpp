// What the pen does: each event goes to the tool in force.

#include "shell/MainFrame.h"

void MainFrame::OnLButtonDown(u32, LPARAM) {}
void MainFrame::OnLButtonUp(u32, LPARAM) {}
void MainFrame::OnMouseMove(u32, LPARAM) {}
