// The speed bar under the map: blue from the left, white beyond the speed.
#pragma once
#include <windows.h>

// Fills `SpeedWnd` blue over its width, then white from width - pixels on.
void ShowSpeed(HDC dc, int pixels);
