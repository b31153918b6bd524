// The logging session: its start from the main menu and its screen.
#pragma once

// "&Logging" on the main menu: checks, ports, threads, then the logging screen.
void StartSession();
