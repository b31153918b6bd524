// The GPS monitor window of the main menu.
#pragma once

// "GPS M&onitoring": opens the GPS port and shows the monitor.
void OpenGpsMonitor();
